#include <algorithm>
#include <cmath>
#include <memory>
#include <ostream>
#include <system_error>

#include "player/cli/ApplyPicture.h"
#include "player/cli/ProgressBar.h"
#include "player/cli/SideBySide.h"
#include "player/cli/Sweep.h"
#include "player/pictures/Label.h"
#include "player/pictures/Picture.h"
#include "player/pictures/PictureMetadata.h"
#include "player/pictures/Scale.h"

namespace krl::player {

namespace {

namespace fs = std::filesystem;

constexpr int32_t kMargin = 24, kGap = 16, kLabelGap = 8, kSquares = 8;
constexpr Pixel kGround{34, 34, 34, 255};

Bitmap plain(int32_t width, int32_t height) {
    if (int64_t{width} * height * int64_t{sizeof(Pixel)} > kPictureByteLimit)
        throw CommandError("the sheet would be larger than a picture can be: use a smaller --size");
    return {width, height, std::vector<Pixel>(size_t(width) * size_t(height), kGround), nullptr};
}

/// The picture with its longer side at most `side`.
Bitmap noLargerThan(const Bitmap& picture, int32_t side) {
    const double share = double(side) / std::max(picture.width, picture.height);
    if (share >= 1) return picture;
    const auto length = [&](int32_t full) { return std::max(1, int32_t(std::lround(full * share))); };
    return scaled(picture, length(picture.width), length(picture.height));
}

/// A variant on the sheet.
struct Cell {
    Bitmap picture;
    std::optional<Bitmap> label;
};

/// Rows for all but the last argument that varies, or about as wide as one and a half times its height.
size_t columnsFor(const Sweep& sweep, const Bitmap& cell, size_t asked) {
    const size_t count = sweep.variants.size();
    if (asked > 0) return std::min(asked, count);
    if (sweep.counts.size() > 1) return sweep.counts.back();
    const double wide = std::sqrt(1.5 * double(count) * cell.height / cell.width);
    return std::clamp(static_cast<size_t>(std::lround(wide)), size_t{1}, count);
}

/// Lays out the original with a title, and the variants below.
class Sheet {
public:
    Sheet(const Bitmap& original, std::vector<Cell> cells, size_t columns)
        : original_(original), cells_(std::move(cells)), columns_(int32_t(columns)) {
        for (const Cell& cell : cells_) {
            cellWidth_ = std::max(cellWidth_, cell.picture.width);
            cellHeight_ = std::max(cellHeight_, cell.picture.height);
            if (cell.label) labelHeight_ = std::max(labelHeight_, kLabelGap + cell.label->height);
        }
    }

    Bitmap draw(const std::string& name, const std::string& calls) const {
        const int32_t rows = (int32_t(cells_.size()) + columns_ - 1) / columns_;
        const int32_t across = columns_ * (cellWidth_ + kGap) - kGap;
        const int32_t rowHeight = cellHeight_ + labelHeight_ + kGap;
        const Head head = headOf(name, calls, across);
        Bitmap sheet =
            plain(2 * kMargin + across, 2 * kMargin + head.height + kMargin + rows * rowHeight - kGap);
        sheet.metadata = profileOf(original_);
        drawHead(sheet, head);
        for (size_t i = 0; i < cells_.size(); ++i)
            drawCell(sheet, cells_[i], kMargin + int32_t(i) % columns_ * (cellWidth_ + kGap),
                     kMargin + head.height + kMargin + int32_t(i) / columns_ * rowHeight);
        return sheet;
    }

private:
    /// The original, and beside it or, on a narrow sheet, below it the title.
    struct Head {
        std::optional<Bitmap> name, calls;
        int32_t x = 0, y = 0, height = 0;  ///< of the title, and of both
    };

    Head headOf(const std::string& name, const std::string& calls, int32_t across) const {
        constexpr int32_t narrowest = 240;
        const int32_t beside = across - original_.width - kMargin;
        const bool fits = beside >= narrowest;
        Head head;
        const int32_t width = fits ? beside : across;
        head.name = drawLabel(name, {.size = 18, .width = width, .isBold = true});
        head.calls = drawLabel(calls, {.size = 14, .width = width, .grey = 180});
        const int32_t title = heightOf(head.name) + kLabelGap + heightOf(head.calls);
        head.x = fits ? original_.width + kMargin : 0;
        head.y = fits ? std::max(0, original_.height - title) : original_.height + kLabelGap;
        head.height = std::max(original_.height, head.name ? head.y + title : 0);
        return head;
    }

    /// Its colours mean the same on the sheet.
    static std::shared_ptr<const PictureMetadata> profileOf(const Bitmap& picture) {
        if (!picture.metadata) return nullptr;
        PictureMetadata profile;
        profile.colourProfile = picture.metadata->colourProfile;
        return std::make_shared<PictureMetadata>(std::move(profile));
    }

    static int32_t heightOf(const std::optional<Bitmap>& label) { return label ? label->height : 0; }

    void drawHead(Bitmap& sheet, const Head& head) const {
        drawOver(sheet, overSquares(original_, kSquares), kMargin, kMargin);
        const int32_t x = kMargin + head.x, y = kMargin + head.y;
        if (head.name) drawOver(sheet, *head.name, x, y);
        if (head.calls) drawOver(sheet, *head.calls, x, y + heightOf(head.name) + kLabelGap);
    }

    void drawCell(Bitmap& sheet, const Cell& cell, int32_t x, int32_t y) const {
        drawOver(sheet, overSquares(cell.picture, kSquares), x + (cellWidth_ - cell.picture.width) / 2,
                 y + (cellHeight_ - cell.picture.height) / 2);
        if (cell.label)
            drawOver(sheet, *cell.label, x + (cellWidth_ - cell.label->width) / 2,
                     y + cellHeight_ + kLabelGap);
    }

    const Bitmap& original_;
    const std::vector<Cell> cells_;
    const int32_t columns_;
    int32_t cellWidth_ = 1, cellHeight_ = 1, labelHeight_ = 0;
};

using Chains = std::vector<std::vector<ChainCall>>;

/// Every call of every variant, checked before the first runs.
Chains chainsOf(const Sweep& sweep, const SessionOptions& settings) {
    Session session(settings);
    Chains chains;
    for (const SweepVariant& variant : sweep.variants) {
        std::vector<ChainCall>& chain = chains.emplace_back();
        for (size_t i = 0; i < variant.calls.size(); ++i) {
            chain.emplace_back(variant.calls[i]);
            const ChainCall* before = chains.size() > 1 ? &chains[chains.size() - 2][i] : nullptr;
            chain.back().evaluate(session, before);
        }
    }
    return chains;
}

void refuseOutput(const SweepOptions& options) {
    std::error_code failed;
    if (!isPictureName(options.output))
        throw UsageError(options.output.string() + ": expected a name that ends in " + writableFormats());
    if (fs::equivalent(options.picture, options.output, failed))
        throw UsageError(options.picture.string() + " would be overwritten: name another output");
}

}  // namespace

int sweepCalls(const SweepOptions& options, const Terminal& terminal) {
    const Sweep sweep = readSweep(options.calls);
    refuseOutput(options);
    SessionOptions settings = options.session;
    settings.allowedFolders.push_back(fs::current_path().root_path());
    const Chains chains = chainsOf(sweep, settings);
    const Bitmap original = readPicture(options.picture);
    const Bitmap small = noLargerThan(original, options.size);
    std::vector<Cell> cells(sweep.variants.size());
    {
        ProgressBar bar(terminal, cells.size(), "variants");
        workSideBySide(cells.size(), options.jobs, [&]() -> Worker {
            return [&, run = makeRunner({}, settings)](size_t i) {
                cells[i].picture = noLargerThan(changedBy(run, chains[i], original), options.size);
                bar.step();
            };
        });
    }
    for (size_t i = 0; i < cells.size(); ++i)
        cells[i].label = drawLabel(sweep.variants[i].label, {.width = small.width, .isCentred = true});
    if (!cells.front().label)
        terminal.err << "krlimage: note: there is no text on the sheet: this build draws none\n";
    std::string calls;
    for (const std::string& call : options.calls) calls += (calls.empty() ? "" : "\n") + call;
    const size_t columns = columnsFor(sweep, small, options.columns);
    writePicture(options.output,
                 Sheet(small, std::move(cells), columns).draw(options.picture.filename().string(), calls));
    return 0;
}

}  // namespace krl::player
