#include <cstring>
#include <map>
#include <ostream>

#include "catalogue/ExampleCall.h"
#include "player/cli/CatalogueCalls.h"
#include "player/cli/GalleryPage.h"
#include "player/cli/LookFiles.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/ProgressBar.h"
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

/// Builds the contact sheet.
class Gallery {
public:
    Gallery(const GalleryOptions& options)
        : folder_(fs::absolute(options.folder)),
          source_(options.picture),
          picture_(noWiderThan(readPicture(options.picture), kWidest)) {
        original_ = {options.picture.filename().string(), "before.webp", "thumbnails/before.webp",
                     picture_.width, picture_.height};
        makeFolder(folder_ / "thumbnails");
        makeFolder(folder_ / "samples");
        save(picture_, "before");
    }

    /// Scales the second pictures of the examples to the size of the picture, as most methods require.
    void prepareSamples(const std::vector<const Method*>& methods) {
        for (const Method* method : methods)
            for (const Argument& argument : method->arguments())
                if (argument.kind == ArgumentKind::SecondImage && samples_.count(argument.example) == 0)
                    samples_[argument.example] = prepareSample(argument.example);
    }

    GalleryCard work(Session& session, const Method& method) const {
        GalleryCard card{
            method.heading(), method.shortName(), method.summaryText(), shortCall(method, {}), "", "", ""};
        Bitmap picture = picture_;
        try {
            const CallOutcome outcome = session.apply(picture, exampleOn(method));
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

    fs::path writePage(const std::vector<GalleryCard>& cards) const {
        fs::path page = folder_ / "index.html";
        writeText(page, galleryPage(original_, cards));
        return page;
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
        for (const fs::path& place : {source_.parent_path() / name, fs::path(KRL_SAMPLES) / name}) {
            if (!fs::exists(place)) continue;
            sample = scaled(readPicture(place), picture_.width, picture_.height);
            break;
        }
        const fs::path path = folder_ / "samples" / fs::path(name).filename();
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

    std::string exampleOn(const Method& method) const { return shortCall(method, samples_); }

    const fs::path folder_;
    const fs::path source_;
    const Bitmap picture_;
    GalleryOriginal original_;
    std::map<std::string, std::string> samples_;
};

}  // namespace

int makeGallery(const GalleryOptions& options, const Terminal& terminal) {
    if (!isPictureName("x.webp"))
        throw CommandError("a gallery needs WebP, which this build does not support");
    Gallery gallery(options);
    const std::vector<const Method*> methods = shownMethods();
    gallery.prepareSamples(methods);
    SessionOptions settings = options.session;
    settings.allowedFolders.push_back(fs::absolute(options.folder));
    // The same pictures on every machine; effects run side by side instead.
    settings.threads = ThreadChoice::One;

    std::vector<std::string> names;
    for (const ShippedLook& look : shippedLooks()) names.push_back(look.name);
    const std::vector<ReadyLook> looks = readyLooks(names, {});
    std::vector<GalleryCard> cards(methods.size() + looks.size());
    {
        ProgressBar progress(terminal, cards.size(), "effects");
        workSideBySide(cards.size(), options.jobs, [&]() -> Worker {
            const auto session = std::make_shared<Session>(settings);
            const auto calls = std::make_shared<CatalogueCalls>(settings.threads);
            return [&, session, calls](size_t i) {
                // Looks are shown first.
                cards[i] = i < looks.size() ? gallery.work(*calls, looks[i])
                                            : gallery.work(*session, *methods[i - looks.size()]);
                progress.step();
            };
        });
    }
    terminal.out << gallery.writePage(cards).string() << '\n';
    return 0;
}

}  // namespace krl::player
