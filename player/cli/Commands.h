#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <stdexcept>
#include <string>
#include <vector>

#include "player/lingo/Session.h"

/// The commands of `krlimage`, one function each, independent of how the command line is parsed.
/// Each returns the exit code: 0, or 1 after a failure that it has reported on `err`.
namespace krl::player {

/// The size of a terminal, in cells and of a cell in pixels; 0 for what is unknown.
struct TerminalSize {
    int columns = 0, rows = 0;
    int cellWidth = 0, cellHeight = 0;
};

/// The output streams of a command.
struct Terminal {
    std::ostream& out;
    std::ostream& err;
    /// Whether `err` is a terminal, where a line can be redrawn.
    bool live = false;
    /// Of `out`; no columns if that is no terminal.
    TerminalSize size = {};
};

/// Ends a command with one line on standard error and exit code 1.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Invalid usage: the help is printed as well, and the exit code is 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct RunOptions {
    std::filesystem::path script;
    std::vector<std::string> arguments;
    /// Seconds after which the program ends; 0 for no limit.
    double timeout = 0;
    SessionOptions session;
    std::string threads, stageless;  ///< as given
};
/// Runs a script.
int runScript(const RunOptions& options, const Terminal& terminal);

struct ApplyOptions;
/// Runs a chain of calls on pictures.
int applyCalls(const ApplyOptions& options, const Terminal& terminal);

struct ListOptions {
    std::string word;
    bool json = false;
};
/// Lists all methods, or those that match a word.
int listMethods(const ListOptions& options, const Terminal& terminal);

struct FindOptions {
    std::vector<std::string> words;
};
/// Lists the methods that fit the words best.
int findMethods(const FindOptions& options, const Terminal& terminal);

struct HelpOptions {
    std::string method;
    bool json = false;
};
/// Prints the help of a method.
int helpOnMethod(const HelpOptions& options, const Terminal& terminal);

struct GalleryOptions {
    std::filesystem::path picture;
    std::filesystem::path folder;
    unsigned jobs = 0;
    SessionOptions session;
};
/// Makes a contact sheet that shows every effect.
int makeGallery(const GalleryOptions& options, const Terminal& terminal);

struct SweepOptions {
    std::filesystem::path picture;
    /// Calls whose arguments can be ranges or alternatives.
    std::vector<std::string> calls;
    std::filesystem::path output;
    /// Longest side of a variant on the sheet.
    int32_t size = 320;
    /// Variants in a row; 0 to choose.
    size_t columns = 0;
    unsigned jobs = 0;
    SessionOptions session;
};
/// Makes a sheet with all variants of a chain of calls.
int sweepCalls(const SweepOptions& options, const Terminal& terminal);

struct ShowOptions {
    std::filesystem::path picture;
    std::vector<std::string> calls;
    /// `blocks`, `shades`, `sixel` or `kitty`; empty for the best that the terminal has.
    std::string as;
    /// Width in cells; 0 for as many as fit.
    int columns = 0;
    SessionOptions session;
};
/// Prints a picture on the terminal, after calls.
int showPicture(const ShowOptions& options, const Terminal& terminal);

struct CompareOptions {
    std::filesystem::path first, second;
    /// Where to write a picture of the difference; empty for none.
    std::filesystem::path difference;
    /// The largest difference of a sample that still counts as equal.
    int largest = 0;
    bool json = false;
};
/// Measures how far two pictures differ; the exit code is 1 if it is too far.
int comparePictures(const CompareOptions& options, const Terminal& terminal);

struct CheckOptions {
    std::vector<std::filesystem::path> scripts;
    /// Also reports unknown functions, properties and options.
    bool names = false;
};
/// Checks scripts for mistakes without running them.
int checkScripts(const CheckOptions& options, const Terminal& terminal);

struct LookOptions {
    std::string action;
    std::vector<std::string> words;
    std::string title, description;
    std::vector<std::string> parameters;
    bool json = false;
};
/// Lists, shows, writes or checks looks.
int workOnLooks(const LookOptions& options, const Terminal& terminal);

struct DocsOptions {
    std::filesystem::path folder;
};
/// Writes the method reference.
int writeDocs(const DocsOptions& options, const Terminal& terminal);

}  // namespace krl::player
