#include "player/cli/Batch.h"

#include <algorithm>
#include <map>

#include "player/cli/ApplyOptions.h"
#include "player/cli/Sequence.h"
#include "player/cli/TextFile.h"
#include "player/host/SymbolTable.h"
#include "player/pictures/PictureFiles.h"

namespace krl::player {

namespace fs = std::filesystem;

namespace {

/// Also false for a path that cannot be accessed: opening it later reports why.
bool isFolder(const fs::path& path) {
    std::error_code unreadable;
    return fs::is_directory(path, unreadable);
}

/// Whether a name has the extension of a picture format, including those that this build cannot write.
bool endsAsPictures(const fs::path& name) {
    static constexpr const char* others[] = {".avif", ".bmp", ".gif", ".heic", ".heif", ".jp2", ".jpeg",
                                             ".jpg",  ".jxl", ".pbm", ".pgm",  ".png",  ".pnm", ".ppm",
                                             ".svg",  ".tga", ".tif", ".tiff", ".webp"};
    const std::string extension = folded(name.extension().string());
    return isPictureName(name) ||
           std::find(std::begin(others), std::end(others), extension) != std::end(others);
}

/// Whether an input is a folder or a sequence.
bool isSeveral(const fs::path& input) { return isFolder(input) || Sequence::named(input).has_value(); }

/// A picture to read and, for one in a folder, where in that folder it is.
struct Found {
    fs::path input, within;
    std::optional<int64_t> number = {};  ///< of a sequence
};

/// The folder of a picture relative to `--root`.
fs::path placeBelowRoot(const fs::path& input, const ApplyOptions& options) {
    if (options.root.empty() || isStandardStream(input)) return {};
    const auto absolute = [](const fs::path& path) {
        return path.is_absolute() ? path.lexically_normal() : (fs::current_path() / path).lexically_normal();
    };
    const fs::path place = absolute(input).lexically_relative(absolute(options.root / ""));
    if (place.empty() || *place.begin() == "..")
        throw UsageError(input.string() + " is not below --root " + options.root.string());
    return place.parent_path();
}

/// Finds the pictures to work on.
class Search {
public:
    Search(const ApplyOptions& options, std::vector<std::string>& notes) : options_(options), notes_(notes) {}

    std::vector<Found> in(const BatchPart& part) {
        for (const fs::path& input : part.named) consider(input);
        for (const fs::path& input : part.listed) {
            if (!options_.shard.empty() && isSeveral(input))
                throw UsageError(input.string() + " names several pictures: with --shard, a list names each");
            consider(input);
        }
        return std::move(found_);
    }

private:
    void consider(const fs::path& input) {
        if (const auto sequence = Sequence::named(input))
            for (const int64_t number : sequence->numbers()) {
                const fs::path file = sequence->file(number);
                found_.push_back({file, placeBelowRoot(file, options_), number});
            }
        else if (isFolder(input))
            searchFolder(input);
        else
            found_.push_back({input, placeBelowRoot(input, options_)});
    }

    void searchFolder(const fs::path& folder) {
        const size_t before = found_.size();
        if (options_.recursive)
            for (const auto& entry : fs::recursive_directory_iterator(folder)) consider(folder, entry);
        else
            for (const auto& entry : fs::directory_iterator(folder)) consider(folder, entry);
        if (found_.size() == before) throw CommandError("no pictures found in " + folder.string());
        std::sort(found_.begin() + static_cast<std::ptrdiff_t>(before), found_.end(),
                  [](const Found& a, const Found& b) { return a.input < b.input; });
    }

    void consider(const fs::path& folder, const fs::directory_entry& entry) {
        const fs::path& path = entry.path();
        if (!entry.is_regular_file() || path.filename().string().front() == '.') return;
        if (!endsAsPictures(path)) return;
        if (!isReadableName(path))
            notes_.push_back("skipped " + path.string() + ": pictures of this format cannot be read");
        else if (!isPictureName(path) && options_.format.empty())
            notes_.push_back("skipped " + path.string() +
                             ": the format is read but not written; --format png includes it");
        else
            found_.push_back({path, options_.root.empty() ? path.lexically_relative(folder).parent_path()
                                                          : placeBelowRoot(path, options_)});
    }

    const ApplyOptions& options_;
    std::vector<std::string>& notes_;
    std::vector<Found> found_;
};

std::string extensionFor(const fs::path& input, const std::string& format) {
    if (!format.empty()) return format;
    const std::string extension = input.extension().string();
    return extension.empty() ? "" : extension.substr(1);
}

/// `{folder}/{stem}_{look}.{ext}` filled in.
fs::path nameFrom(const Found& found, size_t number, const ApplyOptions& options) {
    std::string looks;
    for (const std::string& look : options.looks)
        looks += (looks.empty() ? "" : "+") + fs::path(look).stem().string();
    const std::map<std::string, std::string> values = {
        {"folder", found.within.empty() ? "." : found.within.string()},
        {"stem", found.input.stem().string()},
        {"name", found.input.filename().string()},
        {"ext", extensionFor(found.input, options.format)},
        {"look", looks},
        {"n", std::to_string(number)}};
    std::string name;
    const std::string& pattern = options.nameTemplate;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const size_t end = pattern[i] == '{' ? pattern.find('}', i) : std::string::npos;
        if (end == std::string::npos) {
            name += pattern[i];
            continue;
        }
        const auto value = values.find(pattern.substr(i + 1, end - i - 1));
        if (value == values.end())
            throw UsageError("--name: " + pattern.substr(i, end - i + 1) +
                             " is unknown; there is {folder}, {stem}, {name}, {ext}, {look} and {n}");
        name += value->second;
        i = end;
    }
    return fs::path(name).lexically_normal();
}

fs::path nameFor(const Found& found, size_t number, const ApplyOptions& options) {
    if (!options.nameTemplate.empty()) return nameFrom(found, number, options);
    fs::path name = found.within / found.input.filename();
    if (options.format.empty()) return name;
    // Text after a dot is part of the name, as in `v1.2`, unless it is a picture format's extension.
    if (endsAsPictures(name)) return name.replace_extension(options.format);
    return name.string() + '.' + options.format;
}

void refuseSharedOutputs(const std::vector<BatchItem>& items) {
    std::map<fs::path, fs::path> writers;
    for (const BatchItem& item : items) {
        const auto [writer, first] = writers.emplace(item.output.lexically_normal(), item.input);
        if (!first)
            throw UsageError(writer->second.string() + " and " + item.input.string() +
                             " would both be written to " + item.output.string());
    }
}

/// No output may replace an input unless that is asked for.
void refuseLostInputs(const std::vector<BatchItem>& items) {
    std::map<fs::path, const fs::path*> inputs;
    std::error_code failed;
    for (const BatchItem& item : items) inputs[fs::weakly_canonical(item.input, failed)] = &item.input;
    for (const BatchItem& item : items) {
        const auto lost = inputs.find(fs::weakly_canonical(item.output, failed));
        if (!failed && lost != inputs.end() && fs::is_regular_file(*lost->second, failed))
            throw UsageError(lost->second->string() +
                             " would be overwritten: name another output, or use --in-place");
    }
}

void leaveOutDone(std::vector<BatchItem>& items, const ApplyOptions& options,
                  std::vector<std::string>& notes) {
    if (!options.skipExisting && !options.newer) return;
    const size_t all = items.size();
    std::erase_if(items, [&](const BatchItem& item) {
        std::error_code missing;
        const auto written = fs::last_write_time(item.output, missing);
        if (missing) return false;
        return options.skipExisting || written >= fs::last_write_time(item.input, missing);
    });
    if (items.size() < all)
        notes.push_back("skipped " + std::to_string(all - items.size()) + " of " + std::to_string(all) +
                        " pictures, which are done");
}

/// Frames keep their numbers; other pictures are counted from 1.
std::vector<BatchItem> numbered(const std::vector<Found>& found, const Sequence& output) {
    std::vector<BatchItem> items;
    for (const Found& one : found)
        items.push_back({.input = one.input,
                         .output = output.file(one.number.value_or(static_cast<int64_t>(items.size()) + 1))});
    return items;
}

/// Where the pictures go: one file, or names in a folder.
std::vector<BatchItem> pairs(const std::vector<Found>& found, bool isSeveral, const ApplyOptions& options) {
    if (options.inPlace && options.output.empty()) {
        std::vector<BatchItem> items;
        for (const Found& one : found) items.push_back({.input = one.input, .output = one.input});
        return items;
    }
    const fs::path output = options.output;
    if (isStandardStream(output)) {
        if (isSeveral) throw UsageError("standard output takes one picture");
        return {{.input = found.front().input, .output = "/dev/stdout"}};
    }
    if (const auto sequence = Sequence::named(output)) return numbered(found, *sequence);
    if (!isSeveral && options.nameTemplate.empty() && !isFolder(output) && output.has_filename())
        return {{.input = found.front().input, .output = output}};
    std::error_code unreadable;
    if (fs::is_regular_file(output, unreadable))
        throw UsageError(output.string() + " is a file, but several pictures need a folder");
    if (isSeveral && isPictureName(output) && !isFolder(output))
        throw UsageError(output.string() + " names a picture, but several pictures need a folder");
    std::vector<BatchItem> items;
    for (const Found& one : found)
        items.push_back({.input = one.input, .output = output / nameFor(one, items.size() + 1, options)});
    return items;
}

/// Whether the output is a folder because there are several pictures, or might be.
bool hasSeveral(const BatchPart& part, const ApplyOptions& options) {
    return part.isOneOfSeveral || part.named.size() + part.listed.size() > 1 ||
           std::any_of(part.named.begin(), part.named.end(), isSeveral) ||
           std::any_of(part.listed.begin(), part.listed.end(), isSeveral) || !options.shard.empty() ||
           options.keepsLedger();
}

/// Pictures that share an output are in one shard, which refuses them. Those in lists are chosen before they
/// come here.
void leaveOutOtherShards(std::vector<BatchItem>& items, const ApplyOptions& options,
                         std::vector<std::string>& notes) {
    const std::optional<Shard> shard = shardOf(options);
    if (!shard) return;
    const size_t all = items.size();
    std::erase_if(
        items, [&](const BatchItem& item) { return !shard->holds(nameBelowOutput(item.output, options)); });
    if (all > items.size())
        notes.push_back("shard " + shard->text() + " has " + std::to_string(items.size()) + " of " +
                        std::to_string(all) + " pictures");
}

void makeFolders(const std::vector<BatchItem>& items, const ApplyOptions& options) {
    const bool isOneFile = items.size() == 1 && items.front().output == fs::path(options.output);
    if (options.dryRun || options.plan || isOneFile || isStandardStream(options.output) ||
        options.output.empty())
        return;
    makeFolder(outputFolder(options));
    for (const BatchItem& item : items)
        if (item.output.has_parent_path()) makeFolder(item.output.parent_path());
}

}  // namespace

bool isStandardStream(const fs::path& path) { return path == "-"; }

fs::path outputFolder(const ApplyOptions& options) {
    const fs::path output = options.output;
    if (!Sequence::named(output)) return output;
    return output.has_parent_path() ? output.parent_path() : fs::path(".");
}

std::string outputName(const fs::path& input, const ApplyOptions& options) {
    return nameFor({input, placeBelowRoot(input, options)}, 1, options).lexically_normal().generic_string();
}

std::string nameBelowOutput(const fs::path& output, const ApplyOptions& options) {
    if (options.output.empty()) return output.lexically_normal().generic_string();
    const fs::path folder = outputFolder(options) / "";
    return output.lexically_normal().lexically_relative(folder.lexically_normal()).generic_string();
}

std::optional<Shard> shardOf(const ApplyOptions& options) {
    const bool isOne = !options.shard.empty() && !countOfAllShards(options);
    return isOne ? std::optional(Shard::from(options.shard)) : std::nullopt;
}

std::optional<uint32_t> countOfAllShards(const ApplyOptions& options) {
    if (options.shard.rfind("all/", 0) != 0) return std::nullopt;
    if (!options.plan)
        throw UsageError("--shard " + options.shard + " needs --plan; work on one shard at a time");
    return Shard::from("1" + options.shard.substr(3)).count();
}

std::vector<BatchItem> planBatch(const BatchPart& part, const ApplyOptions& options,
                                 std::vector<std::string>* notes) {
    std::vector<std::string> unread;
    std::vector<std::string>& told = notes ? *notes : unread;
    told.insert(told.end(), part.notes.begin(), part.notes.end());
    std::vector<Found> found = Search(options, told).in(part);
    std::vector<BatchItem> items = pairs(found, hasSeveral(part, options), options);
    for (BatchItem& item : items)
        if (isStandardStream(item.input)) item.input = "/dev/stdin";
    for (size_t i = 0; i < items.size(); ++i) items[i].frame = i, items[i].frames = items.size();
    leaveOutOtherShards(items, options, told);
    makeFolders(items, options);
    refuseSharedOutputs(items);
    if (!options.inPlace) refuseLostInputs(items);
    leaveOutDone(items, options, told);
    return items;
}

}  // namespace krl::player
