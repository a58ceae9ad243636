#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Value.h"
#include "player/lingo/ScriptError.h"
#include "player/pictures/Picture.h"

/// The one thing that the command line knows of the player: a host with the plug-in in it, on which
/// scripts and single calls run.
namespace krl::player {

/// What `krlImageCreateLookupTables` is given, whatever the script says.
enum class ThreadChoice { AsScripted, Many, One };

struct SessionOptions {
    /// The plug-in's file; empty for the one that is built in.
    std::filesystem::path xtraFile;
    /// Where members are looked for, beside the script's own folder.
    std::filesystem::path castFolder;
    /// Where pictures with relative names are saved; empty for the script's own folder.
    std::filesystem::path outputFolder;
    /// Further folders that scripts may read and write.
    std::vector<std::filesystem::path> allowedFolders;
    ThreadChoice threads = ThreadChoice::AsScripted;
    /// Bytes that all values and images of a script may take together.
    uint64_t memoryLimit = uint64_t(4) << 30;
    /// Handlers within handlers.
    int recursionLimit = 400;
    std::ostream* output = nullptr;  ///< for `put`; standard output when null
    std::ostream* alerts = nullptr;  ///< for `alert`; standard error when null
};

/// What a call on a picture came to.
struct CallOutcome {
    /// The method's own message, from the `error` entry of its result; empty for a success.
    std::string error;
    /// The result as the message window shows it, such as `[#error: 0]`; empty for a method without.
    std::string shown;
    bool ok() const { return error.empty(); }
};

/// What is counted and still held; all zero when everything was given back.
struct LeakReport {
    int64_t values = 0;
    int64_t locks = 0;
    int64_t interfaces = 0;
    int64_t blocks = 0;

    bool none() const { return values == 0 && locks == 0 && interfaces == 0 && blocks == 0; }
    /// `2 values, 1 lock`.
    std::string text() const;
};

/// A host, the plug-in and the scripts that run on them. Everything that goes wrong is thrown as
/// `ScriptError`. One session belongs to one thread; several sessions run side by side.
class Session {
public:
    explicit Session(SessionOptions options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Runs the handler `main` of a script file, or its first, with `arguments` as a list of
    /// strings; `halt` ends it like its last line.
    void run(const std::filesystem::path& script, const std::vector<std::string>& arguments);

    /// Runs one plug-in call, such as `krlImageBrightness(40, #RGB)` or `brightness(40, #RGB)`, on
    /// `picture`, which is loaded before and let go after. An image in the result, or the first of
    /// a list of them, takes the picture's place.
    CallOutcome apply(Bitmap& picture, std::string_view call);

    /// The value of a text of one expression, as the catalogue takes it; nothing for what no method takes.
    krl::Value evaluate(std::string_view expression);

    /// Ends scripts and instances and tells what was not given back.
    LeakReport close();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// A call as someone wrote it: `vignette(shape: #ellipse, blur: 40)`.
struct WrittenCall {
    struct Argument {
        std::string name;   ///< empty for an argument in its place
        std::string value;  ///< its Lingo text
        Place place;
    };
    std::string name;
    std::vector<Argument> arguments;
};

/// Takes a call apart; throws `ScriptError` where it cannot be parsed.
WrittenCall readCall(std::string_view text);

}  // namespace krl::player
