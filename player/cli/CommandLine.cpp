#include "player/cli/CommandLine.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

#include "catalogue/NearestName.h"
#include "player/cli/ApplyOptions.h"
#include "player/cli/CommandList.h"
#include "player/cli/FittedText.h"
#include "player/cli/LedgerCommand.h"
#include "player/cli/OptionTable.h"
#include "player/cli/PlainOutput.h"
#include "player/cli/Settings.h"
#include "player/cli/Sweep.h"
#include "player/pictures/PixelLimit.h"

namespace krl::player {

namespace {

constexpr const char* kVersion = KRL_VERSION;
constexpr const char* kPurpose =
    "Grades, keys, warps and composites pictures with the KRLImageXtra effects, using single calls "
    "or Lingo scripts.";

/// Declares every command with its options, and holds the parsed values.
class Parser {
public:
    explicit Parser(const Terminal& terminal) : terminal_(terminal) {
        app_.set_version_flag("--version", kVersion, "Print the version");
        app_.set_help_flag("-h,--help", "Print this help");
        app_.require_subcommand(0, 1);
        app_.option_defaults()->configurable(false);
        addRun();
        addApply();
        addListAndHelp();
        addGallery();
        addSweep();
        addShow();
        addCheck();
        addLook();
        addCompare();
        addLedger();
        addGenerated();
    }

    int run(std::vector<std::string> words) {
        const std::string firstWord = words.empty() ? "" : words.front();
        try {
            addSettings(words);
            std::reverse(words.begin(), words.end());  // the library expects the words in reverse order
            app_.parse(words);
            if (!chosen_) throw UsageError("no command: name one of those below");
            const PixelLimit limit(maxPixels_);
            return chosen_();
        } catch (const CLI::CallForVersion&) {
            terminal_.out << "krlimage " << kVersion << '\n';
            return 0;
        } catch (const CLI::CallForHelp&) {
            return printHelp(app_.help());
        } catch (const CLI::ExtrasError& error) {
            return refuse(app_.get_subcommands().empty() ? unknownCommand(firstWord) : error.what());
        } catch (const CLI::ParseError& error) {
            return refuse(withSource(error.what()));
        } catch (const UsageError& error) {
            return refuse(error.what());
        }
    }

private:
    /// The settings go before the other words, which therefore win.
    void addSettings(std::vector<std::string>& words) {
        const auto named = [&](const CLI::App* one) {
            return !words.empty() && one->check_name(words.front());
        };
        for (const CLI::App* command : app_.get_subcommands(named)) {
            settings_ = settingsFor(app_, *command);
            // Of a wrong value, the last place is blamed.
            for (const std::string& word : words)
                std::erase_if(settings_, [&](const Setting& setting) { return setting.isGivenBy(word); });
        }
        for (size_t i = 0; i < settings_.size(); ++i)
            words.insert(words.begin() + 1 + static_cast<std::ptrdiff_t>(i), settings_[i].word());
    }

    /// A complaint about an option, with the file or variable that gave it.
    std::string withSource(const std::string& complaint) const {
        for (auto setting = settings_.rbegin(); setting != settings_.rend(); ++setting)
            if (complaint.starts_with(setting->name() + ':')) return setting->source + ": " + complaint;
        return complaint;
    }

    CLI::App& command(const char* name, const char* summary, const std::function<int()>& action) {
        CLI::App& added = *app_.add_subcommand(name, summary);
        added.callback([this, action] { chosen_ = action; });
        return added;
    }

    std::string unknownCommand(const std::string& word) const {
        std::vector<std::string> names;
        for (const CommandDescription& command : described()) names.push_back(command.name);
        return "there is no command " + word + didYouMean(word, names);
    }

    /// The command that was named, with a blank before it.
    std::string commandName() const {
        const std::vector<CLI::App*> chosen = app_.get_subcommands();
        return chosen.empty() ? "" : " " + chosen.front()->get_name();
    }

    int refuse(const std::string& message) {
        terminal_.err << "krlimage: " << message << "\n"
                      << "krlimage help" << commandName() << " shows what can be used\n";
        return 2;
    }

    static void addLimits(CLI::App& app, SessionOptions& session) {
        app.add_option("--steps", session.stepLimit, "Stop after N statements (default: no limit)")
            ->type_name("N")
            ->check(CLI::Range(uint64_t{1}, uint64_t{1} << 62).description(""));
        addMemory(app, "--memory", session.memoryLimit,
                  "Stop when values and images take SIZE, such as 500M (default 4G)");
        addMemory(app, "--value-size", session.valueLimit,
                  "Stop at a string or list of SIZE, such as 100M (default 1G)");
        app.add_option("--depth", session.recursionLimit, "Stop at N nested handler calls (default 400)")
            ->type_name("N")
            ->check(CLI::Range(1, 100000).description(""));
    }

    void addRun() {
        CLI::App& app =
            command("run", "Run a Lingo script, starting at its handler main or its first handler",
                    [this] { return runScript(run_, terminal_); });
        addPath(app, "SCRIPT", run_.script, "", "The script to run")->required();
        app.add_option("ARG", run_.arguments, "Arguments for the handler, passed as a list of strings")
            ->type_name("");
        addPath(app, "--cast", run_.session.castFolder, "DIR", "Also look for members in DIR");
        addPath(app, "-o,--output", run_.session.outputFolder, "DIR",
                "Save pictures with relative names to DIR");
        settable(addChoice(app, "--stageless", run_.stageless, "refuse|ignore",
                           "Refuse what needs a stage (default), or read VOID and go on"));
        app.add_option("--frames", run_.session.frames, "Run N frames after the start (default 0)")
            ->type_name("N")
            ->check(CLI::Range(0, 1000000).description(""));
        addTimeout(app, run_.timeout);
        addMaxPixels(app, maxPixels_);
        addLimits(app, run_.session);
        addSession(app, run_.session, run_.threads);
    }

    void addApply() {
        CLI::App& app = command("apply", "Apply looks and effects to pictures: apply IN... -o OUT CALL...",
                                [this] { return applyCalls(apply_, terminal_); });
        addApplyOptions(app, apply_);
        addMaxPixels(app, maxPixels_);
    }

    void addListAndHelp() {
        CLI::App& list = command("list", "List all methods, or those matching a word",
                                 [this] { return listMethods(list_, terminal_); });
        list.add_option("WORD", list_.word,
                        "Text to search for in names, headings, summaries and other words for the same")
            ->type_name("");
        list.add_flag("--json", list_.json, "Print JSON");

        CLI::App& find = command("find", "Find methods by what they are for: find old photograph",
                                 [this] { return findMethods(find_, terminal_); });
        find.add_option("WORD", find_.words, "Words to search for in names, summaries and meanings")
            ->type_name("")
            ->required();

        CLI::App& help =
            command("help", "Show help for a method, a family or a command", [this] { return tell(); });
        help.add_option(
                "METHOD", help_.method,
                "Name of a method, whose prefix krlImage is optional, a family such as blur, or a command")
            ->type_name("");
        help.add_flag("--json", help_.json, "Print JSON");
    }

    int tell() {
        if (help_.method.empty()) {
            // `app_.help()` would print the help of the chosen command, `help` itself.
            return printHelp(app_.get_formatter()->make_help(&app_, "krlimage", CLI::AppFormatMode::Normal));
        }
        const auto named = [this](const CLI::App* one) { return one->check_name(help_.method); };
        for (const CLI::App* command : app_.get_subcommands(named))
            return printHelp(command->help("krlimage"));
        return helpOnMethod(help_, terminal_);
    }

    int printHelp(const std::string& text) const {
        terminal_.out << fittedText(text, terminal_.size.columns);
        return 0;
    }

    void addGallery() {
        CLI::App& app = command("gallery", "Make a contact sheet that shows every effect on a picture",
                                [this] { return makeGallery(gallery_, terminal_); });
        addPath(app, "PICTURE", gallery_.picture, "", "The picture to use")->required();
        addPath(app, "-o,--output", gallery_.folder, "DIR", "Folder for index.html and its pictures")
            ->required();
        addJobs(app, gallery_.jobs);
        addMaxPixels(app, maxPixels_);
    }

    void addSweep() {
        CLI::App& app = command(
            "sweep", "Make a sheet of variants: sweep IN 'vignette(blur: 20..200 by 30)' -o sheet.png",
            [this] { return sweepCalls(sweep_, terminal_); });
        addPath(app, "IN", sweep_.picture, "", "The picture to change")->required();
        app.add_option("CALL", sweep_.calls,
                       "Calls with ranges, blur: 20..200 by 30, or alternatives, #screen | #multiply")
            ->type_name("")
            ->required();
        addPath(app, "-o,--output", sweep_.output, "OUT", "The sheet to write")->required();
        app.add_option("--size", sweep_.size, "Longest side of a variant on the sheet (default 320)")
            ->type_name("N")
            ->check(CLI::Range(16, 4096).description(""));
        app.add_option("--columns", sweep_.columns,
                       "Variants in a row (default: the values of the last argument that varies)")
            ->type_name("N")
            ->check(CLI::Range(size_t{1}, kMostVariants).description(""));
        addJobs(app, sweep_.jobs);
        addMaxPixels(app, maxPixels_);
    }

    void addShow() {
        CLI::App& app = command("show", "Show a picture in the terminal, after calls",
                                [this] { return showPicture(show_, terminal_); });
        addPath(app, "IN", show_.picture, "", "The picture to show")->required();
        app.add_option("CALL", show_.calls, "Calls to apply first")->type_name("");
        addChoice(
            app, "--as", show_.as, "blocks|shades|sixel|kitty",
            "Print coloured half blocks, shades without colours, or the pixels of a protocol (default:\n"
            "the best that the terminal has); works in a pipe too");
        app.add_option("--columns", show_.columns, "Width in columns (default: as wide as fits)")
            ->type_name("N")
            ->check(CLI::Range(1, 4096).description(""));
        addMaxPixels(app, maxPixels_);
    }

    void addCheck() {
        CLI::App& app = command("check", "Check scripts for mistakes without running them",
                                [this] { return checkScripts(check_, terminal_); });
        addPaths(app, "SCRIPT", check_.scripts, "", "The scripts to check")->required();
        app.add_flag("--names", check_.names, "Also report unknown functions, properties and options");
    }

    void addLook() {
        CLI::App& app =
            command("look", "List, show, write or check looks, which are chains of calls in a file",
                    [this] { return workOnLooks(look_, terminal_); });
        addChoice(app, "ACTION", look_.action, "list|show|save|check",
                  "list the looks that come with the program and yours, show NAME, save FILE CALL..., or "
                  "check FILE...")
            ->required();
        app.add_option("NAME|FILE|CALL", look_.words, "A look by its name or file, and calls to save")
            ->type_name("");
        app.add_option("--title", look_.title, "Title of the saved look (default: the file's name)")
            ->type_name("TEXT");
        app.add_option("--description", look_.description, "Description of the saved look")
            ->type_name("TEXT");
        addTexts(app, "--parameter", look_.parameters, "TEXT",
                 "A parameter of the saved look, such as 'soft: 8% from 2% to 30% \"softness\"'; can be "
                 "repeated");
        app.add_flag("--json", look_.json, "Print the list as JSON");
    }

    void addCompare() {
        CLI::App& app = command("compare", "Measure how far two pictures differ",
                                [this] { return comparePictures(compare_, terminal_); });
        addPath(app, "FIRST", compare_.first, "", "A picture")->required();
        addPath(app, "SECOND", compare_.second, "", "The picture to compare it with")->required();
        addPath(app, "-o,--output", compare_.difference, "OUT", "Also write a picture of the difference");
        app.add_option("--max", compare_.largest,
                       "Largest difference of a sample that still counts as equal, 0 to 255 (default 0)")
            ->type_name("N")
            ->check(CLI::Range(0, 255).description(""));
        app.add_flag("--json", compare_.json, "Print JSON");
        addMaxPixels(app, maxPixels_);
    }

    void addLedger() {
        CLI::App& app = command("ledger", "Say what became of the pictures of a batch, over all its shards",
                                [this] { return inspectLedger(ledger_, terminal_); });
        addChoice(app, "ACTION", ledger_.action, "verify|summary",
                  "verify that every result is there as recorded, or print a summary of what is recorded")
            ->required();
        addPath(app, "OUT", ledger_.output, "", "The output folder of apply --ledger")->required();
        app.add_flag("--json", ledger_.json, "Print JSON");
    }

    void addGenerated() {
        CLI::App& docs = command("docs", "Write the method reference, methods.md, with its pictures",
                                 [this] { return writeDocs(docs_, terminal_); });
        addPath(docs, "-o,--output", docs_.folder, "DIR", "Folder for methods.md")->required();

        CLI::App& completions = command("completions", "Print a completion script for a shell", [this] {
            terminal_.out << completionScript(described(), shell_);
            return 0;
        });
        addChoice(completions, "SHELL", shell_, "bash|zsh", "The shell to complete for")->required();

        command("man", "Print the manual page", [this] {
            terminal_.out << manualPage(described());
            return 0;
        });
    }

    static OptionDescription described(const CLI::Option& option) {
        OptionDescription description;
        for (const std::string& name : option.get_snames()) description.names.push_back("-" + name);
        for (const std::string& name : option.get_lnames()) description.names.push_back("--" + name);
        if (!option.nonpositional()) description.names = {option.get_name(true)};
        if (option.get_expected_max() > 0) description.value = option.get_type_name();
        description.meaning = option.get_description();
        description.required = option.get_required();
        description.several = option.get_expected_max() > 1;
        description.settable = option.get_configurable();
        return description;
    }

    CommandList described() const {
        CommandList commands;
        for (const CLI::App* app : app_.get_subcommands([](const CLI::App*) { return true; })) {
            CommandDescription& command = commands.emplace_back();
            command.name = app->get_name();
            command.summary = app->get_description();
            for (const CLI::Option* option : app->get_options())
                (option->nonpositional() ? command.options : command.words).push_back(described(*option));
        }
        return commands;
    }

    const Terminal& terminal_;
    std::vector<Setting> settings_;
    CLI::App app_{kPurpose, "krlimage"};
    std::function<int()> chosen_;
    int64_t maxPixels_ = kUsualPixelLimit;
    RunOptions run_;
    ApplyOptions apply_;
    ListOptions list_;
    HelpOptions help_;
    GalleryOptions gallery_;
    SweepOptions sweep_;
    ShowOptions show_;
    CheckOptions check_;
    DocsOptions docs_;
    LookOptions look_;
    FindOptions find_;
    CompareOptions compare_;
    LedgerOptions ledger_;
    std::string shell_;
};

}  // namespace

int runCommandLine(const std::vector<std::string>& words, const Terminal& streams) {
    PlainOutput out(streams.out), err(streams.err);
    // A pipe gets every byte.
    const bool isTerminal = streams.size.columns > 0;
    const Terminal terminal{isTerminal ? out : streams.out, err, streams.live, streams.size};
    try {
        return Parser(terminal).run(words);
    } catch (const ScriptError& error) {
        const std::string excerpt = error.excerpt();
        terminal.err << "krlimage: " << error.what() << '\n' << excerpt << (excerpt.empty() ? "" : "\n");
    } catch (const std::bad_alloc&) {
        terminal.err << "krlimage: out of memory\n";
    } catch (const std::exception& error) {
        terminal.err << "krlimage: " << error.what() << '\n';
    }
    return 1;
}

}  // namespace krl::player
