#include <algorithm>
#include <cstring>
#include <map>
#include <ostream>

#include "catalogue/ExampleCall.h"
#include "player/cli/CatalogueCalls.h"
#include "player/cli/GalleryPage.h"
#include "player/cli/LookFiles.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/ProgressBar.h"
#include "player/cli/SamplePictures.h"
#include "player/cli/SideBySide.h"
#include "player/cli/TextFile.h"
#include "player/pictures/Picture.h"
#include "player/pictures/Scale.h"

namespace krl::player {

namespace {

namespace fs = std::filesystem;

/// The examples are chosen for pictures of about this size, and most screens show no more.
constexpr int32_t kWidest = 1280, kThumbnail = 480;

/// All methods except those that manage the engine and the timer, which have nothing to show.
std::vector<const Method*> shownMethods() {
    std::vector<const Method*> shown;
    for (const Family& group : catalogue().families())
        for (const Method* method : group.methods)
            if (!method->managesTheEngine()) shown.push_back(method);
    return shown;
}

Bitmap mirrored(const Bitmap& picture) {
    Bitmap turned = picture;
    for (int32_t y = 0; y < turned.height; ++y) std::reverse(turned.row(y), turned.row(y) + turned.width);
    return turned;
}

/// A picture that effects are shown on, with the second pictures of their examples in its size.
class Stage {
public:
    Stage(const fs::path& file, const std::string& name, const fs::path& folder)
        : picture_(noWiderThan(readPicture(file), kWidest)), folder_(folder), source_(file), name_(name) {
        original_ = {file.filename().string(), name + ".webp", "thumbnails/" + name + ".webp", picture_.width,
                     picture_.height};
        save(picture_, name);
    }

    const Bitmap& picture() const { return picture_; }
    const GalleryOriginal& original() const { return original_; }

    /// Scales the second pictures of the examples to the size of the picture, as most methods require.
    void prepareSamples(const Method& method) {
        for (const Argument& argument : method.arguments())
            if (argument.kind == ArgumentKind::SecondImage && samples_.count(argument.example) == 0)
                samples_[argument.example] = prepareSample(argument.example);
    }

    GalleryCard work(Session& session, const Method& method) const {
        GalleryCard card{
            method.heading(), method.shortName(), method.summaryText(), shortCall(method, {}), "", "", ""};
        Bitmap picture = picture_;
        try {
            const CallOutcome outcome = session.apply(picture, shortCall(method, samples_));
            if (!outcome.ok())
                card.answer = outcome.error;
            else if (outcome.shown != "[#error: 0]" && !method.makesPicture())
                card.answer = outcome.shown;
        } catch (const ScriptError& error) {
            card.answer = error.what();
            return card;
        }
        if (picture.pixels == picture_.pixels) return card;
        show(picture, card);
        return card;
    }

    GalleryCard work(CatalogueCalls& calls, const ReadyLook& look) const {
        GalleryCard card{"Looks", look.name, look.look.description(), "--look " + look.name, "", "", ""};
        Bitmap picture = picture_;
        const CallOutcome outcome = calls.apply(picture, look);
        card.answer = outcome.error;
        if (outcome.ok()) show(picture, card);
        return card;
    }

private:
    void show(const Bitmap& picture, GalleryCard& card) const {
        save(picture, card.name);
        card.picture = card.name + ".webp";
        card.thumbnail = "thumbnails/" + card.picture;
    }

    void save(const Bitmap& picture, const std::string& name) const {
        writePicture(folder_ / (name + ".webp"), picture);
        writePicture(folder_ / "thumbnails" / (name + ".webp"), noWiderThan(picture, kThumbnail));
    }

    std::string prepareSample(const std::string& name) const {
        Bitmap sample = mirrored(picture_);
        std::vector<fs::path> folders = sampleFolders();
        folders.insert(folders.begin(), source_.parent_path());
        for (const fs::path& place : folders) {
            if (!fs::exists(place / name)) continue;
            sample = scaled(readPicture(place / name), picture_.width, picture_.height);
            break;
        }
        const fs::path path = folder_ / "samples" / (name_ + "-" + fs::path(name).filename().string());
        writePicture(path, sample);
        return path.string();
    }

    /// The example call for a picture of this size; `paths` maps the names of sample pictures
    /// to their files.
    std::string shortCall(const Method& method, const std::map<std::string, std::string>& paths) const {
        ExampleSetting setting;
        setting.width = picture_.width;
        setting.height = picture_.height;
        setting.image = [&](const char* sample) {
            const auto found = paths.find(sample);
            return "image(\"" + (found == paths.end() ? sample : found->second) + "\")";
        };
        return method.shortName() + exampleCall(method, setting).substr(std::strlen(method.name()));
    }

    Bitmap picture_;
    fs::path folder_, source_;
    std::string name_;  ///< of its files
    GalleryOriginal original_;
    std::map<std::string, std::string> samples_;
};

/// Builds the contact sheet.
class Gallery {
public:
    Gallery(const GalleryOptions& options, std::vector<const Method*> methods)
        : folder_(fs::absolute(options.folder)), methods_(std::move(methods)) {
        makeFolder(folder_ / "thumbnails");
        makeFolder(folder_ / "samples");
        stages_.emplace_back(options.picture, "before", folder_);
        for (const Method* method : methods_) {
            places_.push_back(stageFor(*method));
            stages_[places_.back()].prepareSamples(*method);
        }
    }

    size_t methods() const { return methods_.size(); }

    /// Can be called from any thread, with a session of its own.
    GalleryCard work(Session& session, size_t method) const {
        GalleryCard card = stages_[places_[method]].work(session, *methods_[method]);
        card.original = places_[method];
        return card;
    }
    GalleryCard work(CatalogueCalls& calls, const ReadyLook& look) const {
        return stages_.front().work(calls, look);
    }

    fs::path writePage(const std::vector<GalleryCard>& cards) const {
        fs::path page = folder_ / "index.html";
        std::vector<GalleryOriginal> originals;
        for (const Stage& stage : stages_) originals.push_back(stage.original());
        const std::string counts = std::to_string(methods()) + " of " +
                                   std::to_string(shortMethodNames().size()) + " methods and " +
                                   std::to_string(cards.size() - methods()) + " looks";
        writeText(page, galleryPage(originals, cards, counts));
        return page;
    }

private:
    /// The given picture, or one that has what the method's family works on.
    size_t stageFor(const Method& method) {
        const SampleNeed* need = sampleNeedOf(method);
        if (!need || need->isMet(stages_.front().picture())) return 0;
        const auto found = std::find_if(stages_.begin(), stages_.end(), [&](const Stage& stage) {
            return stage.original().name == need->sample;
        });
        if (found != stages_.end()) return size_t(found - stages_.begin());
        const fs::path file = sampleFile(need->sample);
        if (file.empty()) return 0;
        stages_.emplace_back(file, "before-" + file.stem().string(), folder_);
        return stages_.size() - 1;
    }

    const fs::path folder_;
    const std::vector<const Method*> methods_;
    std::vector<Stage> stages_;   ///< the first has the given picture
    std::vector<size_t> places_;  ///< stage of each method
};

}  // namespace

int makeGallery(const GalleryOptions& options, const Terminal& terminal) {
    if (!isPictureName("x.webp"))
        throw CommandError("a gallery needs WebP, which this build does not support");
    Gallery gallery(options, shownMethods());
    SessionOptions settings = options.session;
    settings.allowedFolders.push_back(fs::absolute(options.folder));
    // The same pictures on every machine; effects run side by side instead.
    settings.threads = ThreadChoice::One;

    std::vector<std::string> names;
    for (const ShippedLook& look : shippedLooks()) names.push_back(look.name);
    const std::vector<ReadyLook> looks = readyLooks(names, {});
    std::vector<GalleryCard> cards(gallery.methods() + looks.size());
    {
        ProgressBar progress(terminal, cards.size(), "effects");
        workSideBySide(cards.size(), options.jobs, [&]() -> Worker {
            const auto session = std::make_shared<Session>(settings);
            const auto calls = std::make_shared<CatalogueCalls>(settings.threads);
            return [&, session, calls](size_t i) {
                // Looks are shown first.
                cards[i] = i < looks.size() ? gallery.work(*calls, looks[i])
                                            : gallery.work(*session, i - looks.size());
                progress.step();
            };
        });
    }
    terminal.out << gallery.writePage(cards).string() << '\n';
    return 0;
}

}  // namespace krl::player
