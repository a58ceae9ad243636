#include "player/cli/ExamplePictures.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <set>

#include "catalogue/Catalogue.h"
#include "catalogue/ExampleCall.h"
#include "player/cli/Commands.h"
#include "player/cli/ContentHash.h"
#include "player/cli/SamplePictures.h"
#include "player/cli/SideBySide.h"
#include "player/cli/TextFile.h"
#include "player/pictures/Label.h"
#include "player/pictures/PictureFiles.h"
#include "player/pictures/Scale.h"

namespace krl::player {

namespace fs = std::filesystem;

namespace {

constexpr const char* kFolder = "pictures/methods";
constexpr const char* kList = "pictures/methods/pictures.txt";
constexpr const char* kPhotograph = "landscape.png";
constexpr const char* kCutOut = "logo.png";  // for what works on transparency
constexpr int32_t kSideWidth = 240, kGap = 6, kSquares = 8;
constexpr int kQuality = 75;

fs::path requireSample(const std::string& name) {
    fs::path file = sampleFile(name);
    if (file.empty()) throw CommandError("the picture " + name + " that comes with the program is missing");
    return file;
}

/// The example call on a picture that comes with the program, with second pictures of that kind.
std::string callOn(const Bitmap& picture, const Method& method) {
    ExampleSetting setting;
    setting.width = picture.width;
    setting.height = picture.height;
    setting.image = [](const char* sample) { return "image(\"" + requireSample(sample).string() + "\")"; };
    return exampleCall(method, setting);
}

/// What is transparent shows a pattern of squares.
Bitmap smallSide(const Bitmap& picture) { return overSquares(noWiderThan(picture, kSideWidth), kSquares); }

/// Samples that the method may show on, the best first; laid on itself, a picture shows little.
std::vector<std::string> samplesFor(const Method& method) {
    std::vector<std::string> samples = {kPhotograph, kCutOut};
    if (const SampleNeed* need = sampleNeedOf(method)) samples.insert(samples.begin(), need->sample);
    for (const Argument& argument : method.arguments())
        if (argument.kind == ArgumentKind::SecondImage && argument.example == samples.front())
            std::rotate(samples.begin(), samples.begin() + 1, samples.end());
    return samples;
}

Bitmap sideBySide(const Bitmap& left, const Bitmap& right) {
    const int32_t width = left.width + kGap + right.width, height = std::max(left.height, right.height);
    Bitmap both{width, height, std::vector<Pixel>(size_t(width) * size_t(height), {255, 255, 255, 255}), {}};
    drawOver(both, left, 0, 0);
    drawOver(both, right, left.width + kGap, 0);
    return both;
}

/// Of a session that reads the pictures that come with the program.
SessionOptions settings() {
    SessionOptions options;
    options.allowedFolders = sampleFolders();
    // The same pictures on every machine.
    options.threads = ThreadChoice::One;
    return options;
}

/// The lines of a list, or none if it cannot be read.
std::set<std::string> linesOf(const fs::path& list) {
    std::set<std::string> lines;
    std::ifstream text(list);
    for (std::string line; std::getline(text, line);) lines.insert(line + '\n');
    return lines;
}

}  // namespace

bool hasExamplePicture(const Method& method) {
    if (method.rewritesPicture()) return true;
    // Others make an empty picture, or one of a list of pictures, whose example is empty ones.
    const auto isList = [](const Argument& argument) { return argument.kind == ArgumentKind::Value; };
    return method.makesPicture() && method.family() != "inert" &&
           std::none_of(method.arguments().begin(), method.arguments().end(), isList);
}

std::string examplePictureFile(const Method& method) {
    return std::string(kFolder) + '/' + method.shortName() + ".jpg";
}

std::string examplePictureAddress(const Method& method) {
    const std::string file = examplePictureFile(method);
    for (const fs::path& folder : {fs::path(KRL_SAMPLES) / "../../docs", installedFolder("docs")})
        if (fs::exists(folder / file)) return (folder / file).lexically_normal().string();
    return file + ", beside methods.md";
}

ExamplePainter::ExamplePainter() : session_(settings()) {}

const ExamplePainter::Sample& ExamplePainter::sample(const std::string& name) {
    if (const auto found = samples_.find(name); found != samples_.end()) return found->second;
    Bitmap whole = readPicture(requireSample(name)), small = smallSide(whole);
    return samples_.emplace(name, Sample{std::move(whole), std::move(small)}).first->second;
}

Bitmap ExamplePainter::picture(const Method& method) {
    Bitmap shown;
    for (const std::string& name : samplesFor(method)) {
        const Sample& before = sample(name);
        Bitmap after = before.whole;
        const CallOutcome outcome = session_.apply(after, callOn(before.whole, method));
        if (!outcome.ok()) throw CommandError(method.shortName() + ": " + outcome.error);
        const Bitmap small = smallSide(after);
        shown = sideBySide(before.small, small);
        if (small.pixels != before.small.pixels) break;
    }
    return shown;
}

std::string examplePictureLine(const Method& method, const Bitmap& picture) {
    const std::string_view bytes(reinterpret_cast<const char*>(picture.pixels.data()),
                                 picture.pixels.size() * sizeof(Pixel));
    return hashOf(bytes).text() + "  " + method.shortName() + '\n';
}

void writeExamplePictures(const fs::path& folder) {
    std::vector<const Method*> methods;
    for (const Method* method : catalogue().methods())
        if (hasExamplePicture(*method)) methods.push_back(method);
    makeFolder(folder / kFolder);
    const std::set<std::string> listed = linesOf(folder / kList);
    std::vector<std::string> lines(methods.size());
    workSideBySide(methods.size(), 0, [&]() -> Worker {
        const auto painter = std::make_shared<ExamplePainter>();
        return [&, painter](size_t i) {
            const Bitmap picture = painter->picture(*methods[i]);
            lines[i] = examplePictureLine(*methods[i], picture);
            const fs::path file = folder / examplePictureFile(*methods[i]);
            WriteOptions options;
            options.quality = kQuality;
            if (listed.count(lines[i]) == 0 || !fs::exists(file)) writePicture(file, picture, options);
        };
    });
    std::string list;
    for (const std::string& line : lines) list += line;
    writeText(folder / kList, list);
}

}  // namespace krl::player
