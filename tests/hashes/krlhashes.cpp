#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "catalogue/ExampleCall.h"
#include "host/MethodRegistry.h"
#include "player/lingo/Session.h"
#include "player/pictures/Picture.h"
#include "player/pictures/Scale.h"

/// The table of hashes: what every method's registry example makes of the sample pictures. It must
/// come out equal from every build, with any number of bands and from the plug-in as a file.
///
///     krlhashes prepare SAMPLES FOLDER     the samples, small, as PAM
///     krlhashes write FOLDER TABLE         the table of this build
///     krlhashes check FOLDER TABLE [XTRA]  compares; one band, then one for each processor
namespace {

namespace fs = std::filesystem;
using namespace krl;

constexpr const char* kPictures[] = {"landscape", "greenscreen"};
constexpr const char* kSamples[] = {"landscape", "greenscreen", "portrait", "logo"};
constexpr int32_t kWidest = 320;

/// FNV-1a over 64 bits.
class Hash {
public:
    void add(const void* data, size_t bytes) {
        for (size_t i = 0; i < bytes; ++i)
            state_ = (state_ ^ static_cast<const uint8_t*>(data)[i]) * 0x100000001b3u;
    }
    std::string text() const {
        char buffer[20];
        std::snprintf(buffer, sizeof(buffer), "%08x%08x", unsigned(state_ >> 32), unsigned(state_));
        return buffer;
    }

private:
    uint64_t state_ = 0xcbf29ce484222325u;
};

using Table = std::map<std::string, std::string>;

/// Whether bands are part of what the method of this row does.
bool dependsOnBands(const std::string& key) {
    const Method* method = catalogue().find(key.substr(0, key.find(' ')));
    return method && method->resultDependsOnBands();
}

std::string hashOf(player::Session& session, const Method& method, const fs::path& folder,
                   player::Bitmap picture) {
    ExampleSetting setting{picture.width, picture.height, [&](const char* sample) {
                               const fs::path file = folder / fs::path(sample).replace_extension(".pam");
                               return "image(\"" + file.generic_string() + "\")";
                           }};
    const player::CallOutcome outcome = session.apply(picture, exampleCall(method, setting));
    Hash hash;
    const int32_t size[] = {picture.width, picture.height};
    hash.add(size, sizeof(size));
    hash.add(picture.pixels.data(), picture.pixels.size() * sizeof(Pixel));
    hash.add(outcome.error.data(), outcome.error.size());
    return hash.text();
}

Table makeTable(const fs::path& folder, const std::string& xtra, player::ThreadChoice threads) {
    player::SessionOptions options;
    options.xtraFile = xtra;
    options.threads = threads;
    options.allowedFolders = {folder};
    player::Session session(options);
    Table table;
    for (const char* name : kPictures) {
        const player::Bitmap picture = player::readPicture(folder / (std::string(name) + ".pam"));
        for (const Method* method : host::methods()) {
            if (method->managesTheEngine()) continue;
            table[std::string(method->name()) + " " + name] = hashOf(session, *method, folder, picture);
        }
    }
    return table;
}

Table readTable(const fs::path& path) {
    Table table;
    std::ifstream file(path);
    for (std::string method, picture, hash; file >> method >> picture >> hash;)
        table[method + " " + picture] = hash;
    if (table.empty()) throw player::PictureError("there is no table in " + path.string());
    return table;
}

/// Tells every line that differs; how many do.
int compare(const Table& expected, const Table& found, const char* run, bool bandsDiffer) {
    int passed = 0, failed = 0;
    const auto judge = [&](bool good, const std::string& key) {
        good ? ++passed : ++failed;
        if (!good) std::printf("%s: %s differs\n", run, key.c_str());
    };
    for (const auto& [key, hash] : expected) {
        if (bandsDiffer && dependsOnBands(key)) continue;
        const auto other = found.find(key);
        judge(other != found.end() && other->second == hash, key);
    }
    for (const auto& [key, hash] : found)
        if (expected.count(key) == 0) judge(false, key + " (not in the table)");
    std::printf("%s: %d passed, %d failed\n", run, passed, failed);
    return failed;
}

int check(const fs::path& folder, const fs::path& tablePath, const std::string& xtra) {
    const Table expected = readTable(tablePath);
    const int alone =
        compare(expected, makeTable(folder, xtra, player::ThreadChoice::One), "one band", false);
    const int many =
        compare(expected, makeTable(folder, xtra, player::ThreadChoice::Many), "many bands", true);
    return alone + many == 0 ? 0 : 1;
}

int prepare(const fs::path& samples, const fs::path& folder) {
    fs::create_directories(folder);
    for (const char* name : kSamples)
        player::writePicture(
            folder / (std::string(name) + ".pam"),
            player::noWiderThan(player::readPicture(samples / (std::string(name) + ".png")), kWidest));
    return 0;
}

int write(const fs::path& folder, const fs::path& tablePath) {
    std::ofstream file(tablePath, std::ios::binary);
    for (const auto& [key, hash] : makeTable(folder, "", player::ThreadChoice::One))
        file << key << ' ' << hash << '\n';
    return file ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    try {
        if (words.size() == 3 && words[0] == "prepare") return prepare(words[1], words[2]);
        if (words.size() == 3 && words[0] == "write") return write(fs::absolute(words[1]), words[2]);
        if ((words.size() == 3 || words.size() == 4) && words[0] == "check")
            return check(fs::absolute(words[1]), words[2], words.size() == 4 ? words[3] : "");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "krlhashes: %s\n", error.what());
        return 1;
    }
    std::fprintf(
        stderr, "usage: krlhashes prepare SAMPLES FOLDER | write FOLDER TABLE | check FOLDER TABLE [XTRA]\n");
    return 2;
}
