#include "player/cli/OptionTable.h"

#include "player/cli/ApplyOptions.h"
#include "player/cli/CommandList.h"
#include "player/cli/Commands.h"
#include "player/pictures/Picture.h"

namespace krl::player {

namespace {

std::string alternatives(const std::vector<std::string>& choices) {
    std::string text;
    for (const std::string& one : choices) text += (text.empty() ? "" : " or ") + one;
    return text;
}

/// Takes numbers from 0.001 to a million. `CLI::Range` lets NaN pass.
CLI::Validator positiveNumber() {
    return CLI::Validator(
        [](const std::string& text) -> std::string {
            double number = 0;
            const bool isNumber = CLI::detail::lexical_cast(text, number);
            if (isNumber && number >= 0.001 && number <= 1e6) return "";
            return "expected a number from 0.001 to 1000000, got " + text;
        },
        "");
}

/// Numbers that may end with K, M or G.
struct Amounts {
    bool areBinary;    ///< whether K is 1024 and not 1000
    const char* unit;  ///< what a number alone counts, such as `M`; empty for ones
    uint64_t least, most;
    const char* expected;
};
constexpr Amounts kMemorySizes{true, "M", uint64_t{1} << 20, uint64_t{1} << 44, "a size such as 500M or 4G"};
constexpr Amounts kPixelCounts{false, "", 1, uint64_t{1} << 40,
                               "a number of pixels such as 100M or 4G, at most 1099511627776"};

/// Makes a plain number of one such as 500M.
CLI::Validator amount(const Amounts& amounts) {
    return CLI::Validator(
        [amounts](std::string& text) -> std::string {
            std::string plain = text;
            if (!plain.empty() && std::isdigit(static_cast<unsigned char>(plain.back())))
                plain += amounts.unit;
            uint64_t number = 0;
            try {
                CLI::AsSizeValue(!amounts.areBinary)(plain);
                if (!CLI::detail::lexical_cast(plain, number)) number = 0;
            } catch (const CLI::ValidationError&) {
                number = 0;
            }
            if (number < amounts.least || number > amounts.most)
                return std::string("expected ") + amounts.expected + ", got " + text;
            text = plain;
            return "";
        },
        "");
}

/// Refuses the empty name, which a variable of the shell that is not set leaves.
CLI::Validator named() {
    return CLI::Validator(
        [](const std::string& text) -> std::string {
            return text.empty() ? "expected the name of a file or folder, got none" : "";
        },
        "");
}

}  // namespace

CLI::Option* addPath(CLI::App& app, const char* name, std::filesystem::path& target, const char* type,
                     const char* meaning) {
    return app
        .add_option_function<std::string>(
            name, [&target](const std::string& text) { target = text; }, meaning)
        ->type_name(type)
        ->check(named());
}

CLI::Option* addPaths(CLI::App& app, const char* name, std::vector<std::filesystem::path>& target,
                      const char* type, const char* meaning) {
    return app
        .add_option_function<std::vector<std::string>>(
            name,
            [&target](const std::vector<std::string>& texts) { target.assign(texts.begin(), texts.end()); },
            meaning)
        ->type_name(type)
        ->check(named());
}

CLI::Option* addTexts(CLI::App& app, const char* name, std::vector<std::string>& target, const char* type,
                      const char* meaning) {
    return app.add_option(name, target, meaning)
        ->type_name(type)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

CLI::Option* addChoice(CLI::App& app, const char* name, std::string& target, const char* choices,
                       const char* meaning) {
    const OptionDescription described{{name}, choices, ""};
    return app.add_option(name, target, meaning)
        ->type_name(choices)
        ->check(CLI::Validator(
            [allowed = described.choices()](const std::string& text) -> std::string {
                const bool known = std::find(allowed.begin(), allowed.end(), text) != allowed.end();
                return known ? "" : "expected " + alternatives(allowed) + ", got " + text;
            },
            ""));
}

CLI::Option* settable(CLI::Option* option) { return option->configurable()->take_last(); }

void addJobs(CLI::App& app, unsigned& jobs) {
    settable(app.add_option("-j,--jobs", jobs, "Pictures processed in parallel (default: one per processor)")
                 ->type_name("N")
                 ->check(CLI::Range(1, 256).description("")));
}

CLI::Option* addMemory(CLI::App& app, const char* name, uint64_t& bytes, const char* meaning) {
    return app.add_option(name, bytes, meaning)->type_name("SIZE")->transform(amount(kMemorySizes));
}

void addMaxPixels(CLI::App& app, int64_t& pixels) {
    settable(app.add_option("--max-pixels", pixels,
                            "Refuse picture files with more than N pixels in all frames, such as 100M\n"
                            "(default 268435456)")
                 ->type_name("N")
                 ->transform(amount(kPixelCounts)));
}

void addTimeout(CLI::App& app, double& seconds) {
    settable(
        app.add_option("--timeout", seconds,
                       "Stop after SECONDS, with exit code 124; finished pictures stay, no other is written")
            ->type_name("SECONDS")
            ->check(positiveNumber()));
}

void addSession(CLI::App& app, SessionOptions& session, std::string& threads) {
    addPath(app, "--xtra", session.xtraFile, "FILE",
            "Load the plug-in from FILE instead of the built-in one");
    addPaths(app, "--allow", session.allowedFolders, "DIR", "Also let scripts read and write in DIR")
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    settable(addChoice(app, "--threads", threads, "mt|st",
                       "Use one thread per processor (mt) or a single thread (st)"));
    app.parse_complete_callback([&threads, &session] {
        if (!threads.empty()) session.threads = threads == "mt" ? ThreadChoice::Many : ThreadChoice::One;
    });
}

namespace {

/// For batches of many pictures.
void addBatchOptions(CLI::App& app, ApplyOptions& options) {
    app.add_option(
           "--shard", options.shard,
           "Process share K of N, or the share of this task of a job array (auto); with --plan also all/N")
        ->type_name("K/N");
    app.add_flag("--ledger", options.ledger, "Record what becomes of every picture in OUT/.krlimage");
    app.add_flag(
        "--resume", options.resume,
        "Leave out pictures that the ledger records as done, if neither they nor what is done to them has "
        "changed; keeps a ledger too");
    settable(app.add_option("--retry", options.retries,
                            "Read again up to N times if the file system fails (default 0)")
                 ->type_name("N")
                 ->check(CLI::Range(0, 100).description("")));
    app.add_option("--max-failures", options.mostFailures,
                   "Start no further picture after N failures, and end with exit code 3")
        ->type_name("N")
        ->check(CLI::Range(1, 1'000'000'000).description(""));
    settable(addMemory(app, "--memory", options.memory,
                       "Hold pictures back while those in progress take SIZE, such as 500M or 4G (default:\n"
                       "most of the memory that is available)"));
    app.add_flag(
        "--plan", options.plan,
        "Print how many pictures and pixels there are and how much memory they take, and write nothing");
}

}  // namespace

void addApplyOptions(CLI::App& app, ApplyOptions& options) {
    app.add_option(
           "IN|CALL", options.words,
           "Pictures, folders of pictures, - for standard input, and calls such as\n"
           "'brightness(40, #RGB)'; arguments can be named, and omitted ones default to the method's\n"
           "example")
        ->type_name("");
    app.add_option("-o,--output", options.output,
                   "Output picture, the folder for several pictures, or - for standard output")
        ->type_name("OUT");
    app.add_option("--name", options.nameTemplate,
                   "Name of each output in the folder, such as '{folder}/{stem}_{look}.{ext}'; there is also "
                   "{name} and {n}")
        ->type_name("TEMPLATE");
    CLI::Option* from = addPath(app, "--from", options.inputList, "FILE",
                                "Also take the inputs that FILE lists, one a line; - for standard input");
    app.add_flag("-0,--null", options.endsWithZero,
                 "Names in the list end with a zero byte, as find -print0 has them")
        ->needs(from);
    addPath(app, "--failures", options.failures, "FILE",
            "List the pictures that failed in FILE, which --from takes again");
    addPath(app, "--watch", options.watch, "DIR",
            "Take the pictures in DIR, and those that appear there, until interrupted");
    addPath(app, "--root", options.root, "DIR", "Keep the place of the inputs below DIR in OUT");
    addBatchOptions(app, options);
    app.add_flag("-r,--recursive", options.recursive, "Also take pictures in folders within folders");
    app.add_flag("--in-place", options.inPlace, "Let outputs replace their inputs; -o can be left out");
    app.add_flag("--skip-existing", options.skipExisting, "Leave out pictures whose output exists");
    app.add_flag("--newer", options.newer, "Leave out pictures whose output is newer than they are");
    app.add_flag("--overwrite", options.overwrite, "Replace outputs that exist, the default");
    app.add_flag("--dry-run", options.dryRun, "Print what would be written, and write nothing");
    app.add_option("--raw", options.raw,
                   "Read raw frames of this size from standard input (-) and write them to standard\n"
                   "output (-o -) until the end: WIDTHxHEIGHT[:bgra|rgba] (default bgra)")
        ->type_name("SIZE");
    app.add_option("--fps", options.fps, "Frames in a second, for arguments that use `seconds`")
        ->type_name("N")
        ->check(positiveNumber());
    app.add_option("--frames", options.frames,
                   "Frames that come through --raw, for arguments that use `frames` or `t`")
        ->type_name("N")
        ->check(CLI::Range(size_t{1}, size_t{1000000000}).description(""));
    settable(app.add_flag("--strict", options.strict,
                          "Refuse numbers outside of their usual range and methods that do nothing"));
    addTexts(app, "--look", options.looks, "LOOK",
             "Apply a look before the calls: a file, or a name that look list shows; can be repeated");
    addTexts(app, "--set", options.settings, "NAME=VALUE", "Set a parameter of the looks; can be repeated");
    settable(addChoice(app, "--format", options.format, KRL_FORMATS,
                       "Output format, regardless of file extensions"));
    settable(app.add_option("--quality", options.quality,
                            "Quality of lossy formats, such as JPEG and WebP, 1 to 100 (default 90)")
                 ->type_name("N")
                 ->check(CLI::Range(1, 100).description("")));
    addDeliveryOptions(app, options);
    app.add_flag("--first-frame", options.firstFrame,
                 "Leave out all but the first page or frame, which GIF, WebP and TIFF keep otherwise");
    addJobs(app, options.jobs);
    addTimeout(app, options.timeout);
    app.add_flag("--json", options.json, "Print a line of JSON for each picture as soon as it is done");
    app.add_flag("--timings", options.timings,
                 "Print the milliseconds of reading, every call and writing; with --json in the line too");
    addChoice(app, "--print", options.print, "lingo",
              "Print the calls as a Lingo script instead of running them");
    addSession(app, options.session, options.threads);
}

}  // namespace krl::player
