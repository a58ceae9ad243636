#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Value.h"
#include "player/lingo/PictureTable.h"
#include "player/lingo/ScriptError.h"
#include "player/pictures/Picture.h"

/// The command line's interface to the player: a host with the plug-in, which runs scripts and single calls.
namespace krl::player {

/// Overrides the argument of `krlImageCreateLookupTables` in scripts.
enum class ThreadChoice { AsScripted, Many, One };

/// What happens where a script needs a stage.
enum class Stageless { Refuse, Ignore };

struct SessionOptions {
    /// The plug-in's file; empty for the built-in one.
    std::filesystem::path xtraFile;
    /// Folder that is searched for members, besides the script's own.
    std::filesystem::path castFolder;
    /// Folder for saved pictures with relative names; empty for the script's own.
    std::filesystem::path outputFolder;
    /// Additional folders that scripts may read and write.
    std::vector<std::filesystem::path> allowedFolders;
    ThreadChoice threads = ThreadChoice::AsScripted;
    /// Memory limit for all values and images of a script, in bytes.
    uint64_t memoryLimit = uint64_t(4) << 30;
    /// Limit for each string and list, in bytes.
    uint64_t valueLimit = uint64_t(1) << 30;
    /// Limit of nested handler calls.
    int recursionLimit = 400;
    /// Limit of the statements and turns of loops that are carried out.
    uint64_t stepLimit = UINT64_MAX;
    /// Where scripts find pictures before any file, and save them; null for files alone.
    PictureTable* pictures = nullptr;
    Stageless stageless = Stageless::Refuse;
    /// Frames that a script runs for after it has started.
    int frames = 0;
    std::ostream* output = nullptr;  ///< for `put`; standard output when null
    std::ostream* alerts = nullptr;  ///< for `alert`; standard error when null
};

/// The outcome of a call on a picture.
struct CallOutcome {
    /// The method's own message, from the `error` entry of its result; empty on success.
    std::string error;
    /// The result as the message window shows it, such as `[#error: 0]`; empty for a method without a result.
    std::string shown;
    bool ok() const { return error.empty(); }
};

/// Counts of objects still held; all zero when everything was released.
struct LeakReport {
    int64_t values = 0;
    int64_t locks = 0;
    int64_t interfaces = 0;
    int64_t blocks = 0;

    bool none() const { return values == 0 && locks == 0 && interfaces == 0 && blocks == 0; }
    /// `2 values, 1 lock`.
    std::string text() const;
};

/// A host, the plug-in and the scripts that run on them. Every failure is thrown as `ScriptError`. A session
/// belongs to one thread; several sessions can run in parallel.
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
    /// `picture`, which is loaded before and released after. An image in the result, or the first of
    /// a list of them, replaces the picture.
    CallOutcome apply(Bitmap& picture, std::string_view call);

    /// Reads the handlers of a text, which `evaluate` can call from then on; `name` is for messages.
    void define(const std::string& name, const std::string& text);

    /// Evaluates a text with one expression for the catalogue; VOID for types that no method takes.
    krl::Value evaluate(std::string_view expression);

    /// Ends scripts and instances and reports what was not released.
    LeakReport close();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// A call as written by the user: `vignette(shape: #ellipse, blur: 40)`.
struct WrittenCall {
    struct Argument {
        std::string name;   ///< empty for a positional argument
        std::string value;  ///< its Lingo source
        Place place;
    };
    std::string name;
    std::vector<Argument> arguments;
};

/// Parses a call; throws `ScriptError` for a syntax error.
WrittenCall readCall(std::string_view text);

}  // namespace krl::player
