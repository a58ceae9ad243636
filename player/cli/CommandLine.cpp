#include "player/cli/CommandLine.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <ostream>

#include "catalogue/NearestName.h"
#include "player/cli/CommandList.h"

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
        addRun();
        addApply();
        addListAndHelp();
        addGallery();
        addCheck();
        addGenerated();
    }

    int run(std::vector<std::string> words) {
        const std::string firstWord = words.empty() ? "" : words.front();
        std::reverse(words.begin(), words.end());  // the library expects the words in reverse order
        try {
            app_.parse(words);
            if (!chosen_) throw UsageError("no command: name one of those below");
            return chosen_();
        } catch (const CLI::CallForVersion&) {
            terminal_.out << "krlimage " << kVersion << '\n';
            return 0;
        } catch (const CLI::CallForHelp&) {
            terminal_.out << app_.help();
            return 0;
        } catch (const CLI::ExtrasError& error) {
            return refuse(app_.get_subcommands().empty() ? unknownCommand(firstWord) : error.what());
        } catch (const CLI::ParseError& error) {
            return refuse(error.what());
        } catch (const UsageError& error) {
            return refuse(error.what());
        }
    }

private:
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

    int refuse(const std::string& message) {
        terminal_.err << "krlimage: " << message << "\n\n" << app_.help();
        return 2;
    }

    static CLI::Option* path(CLI::App& app, const char* name, std::filesystem::path& target, const char* type,
                             const char* meaning) {
        return app
            .add_option_function<std::string>(
                name, [&target](const std::string& text) { target = text; }, meaning)
            ->type_name(type);
    }

    static CLI::Option* paths(CLI::App& app, const char* name, std::vector<std::filesystem::path>& target,
                              const char* type, const char* meaning) {
        return app
            .add_option_function<std::vector<std::string>>(
                name,
                [&target](const std::vector<std::string>& texts) {
                    target.assign(texts.begin(), texts.end());
                },
                meaning)
            ->type_name(type);
    }

    /// An option that takes one of `choices`, written `a|b`.
    static CLI::Option* choice(CLI::App& app, const char* name, std::string& target, const char* choices,
                               const char* meaning) {
        const OptionDescription described{{name}, choices, ""};
        return app.add_option(name, target, meaning)
            ->type_name(choices)
            ->check(CLI::Validator(
                [allowed = described.choices()](const std::string& text) -> std::string {
                    for (const std::string& one : allowed)
                        if (one == text) return "";
                    std::string expected;
                    for (const std::string& one : allowed) expected += (expected.empty() ? "" : " or ") + one;
                    return "expected " + expected + ", got " + text;
                },
                ""));
    }

    void addSession(CLI::App& app, SessionOptions& session) {
        path(app, "--xtra", session.xtraFile, "FILE",
             "Load the plug-in from FILE instead of the built-in one");
        paths(app, "--allow", session.allowedFolders, "DIR", "Also let scripts read and write in DIR")
            ->allow_extra_args(false)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        choice(app, "--threads", threads_, "mt|st",
               "Use one thread per processor (mt) or a single thread (st)");
        app.parse_complete_callback([this, &session] {
            if (!threads_.empty())
                session.threads = threads_ == "mt" ? ThreadChoice::Many : ThreadChoice::One;
        });
    }

    static void addTimeout(CLI::App& app, double& timeout) {
        app.add_option("--timeout", timeout,
                       "Stop after SECONDS, with exit code 124; finished pictures stay, no other is written")
            ->type_name("SECONDS")
            ->check(CLI::Range(0.001, 1e6).description(""));
    }

    void addRun() {
        CLI::App& app =
            command("run", "Run a Lingo script, starting at its handler main or its first handler",
                    [this] { return runScript(run_, terminal_); });
        path(app, "SCRIPT", run_.script, "", "The script to run")->required();
        app.add_option("ARG", run_.arguments, "Arguments for the handler, passed as a list of strings")
            ->type_name("");
        path(app, "--cast", run_.session.castFolder, "DIR", "Also look for members in DIR");
        path(app, "-o,--output", run_.session.outputFolder, "DIR",
             "Save pictures with relative names to DIR");
        addTimeout(app, run_.timeout);
        addSession(app, run_.session);
    }

    void addApply() {
        CLI::App& app = command("apply", "Apply effects to pictures: apply IN... -o OUT CALL...",
                                [this] { return applyCalls(apply_, terminal_); });
        app.add_option(
               "IN|CALL", apply_.words,
               "Pictures, folders of pictures, and calls such as 'brightness(40, #RGB)'; arguments can\n"
               "be named, and omitted ones default to the method's example")
            ->type_name("")
            ->required();
        app.add_option("-o,--output", apply_.output, "Output picture, or the folder for several pictures")
            ->type_name("OUT");
        choice(app, "--format", apply_.format, KRL_FORMATS, "Output format, regardless of file extensions");
        app.add_option("--quality", apply_.quality, "JPEG and WebP quality, 1 to 100 (default 90)")
            ->type_name("N")
            ->check(CLI::Range(1, 100).description(""));
        addJobs(app, apply_.jobs);
        addTimeout(app, apply_.timeout);
        app.add_flag("--json", apply_.json, "Print results as JSON");
        choice(app, "--print", print_, "lingo", "Print the calls as a Lingo script instead of running them");
        addSession(app, apply_.session);
        app.callback([this] {
            apply_.printLingo = !print_.empty();
            chosen_ = [this] { return applyCalls(apply_, terminal_); };
        });
    }

    static void addJobs(CLI::App& app, unsigned& jobs) {
        app.add_option("-j,--jobs", jobs, "Pictures processed in parallel (default: one per processor)")
            ->type_name("N")
            ->check(CLI::Range(1, 256).description(""));
    }

    void addListAndHelp() {
        CLI::App& list = command("list", "List all methods, or those matching a word",
                                 [this] { return listMethods(list_, terminal_); });
        list.add_option("WORD", list_.word, "Text to search for in names, headings and summaries")
            ->type_name("");
        list.add_flag("--json", list_.json, "Print JSON");

        CLI::App& help = command("help", "Show help for a method or command", [this] { return tell(); });
        help.add_option("METHOD", help_.method,
                        "Name of a method or command; the prefix krlImage is optional")
            ->type_name("");
        help.add_flag("--json", help_.json, "Print JSON");
    }

    int tell() {
        if (help_.method.empty()) {
            // `app_.help()` would print the help of the chosen command, `help` itself.
            terminal_.out << app_.get_formatter()->make_help(&app_, "krlimage", CLI::AppFormatMode::Normal);
            return 0;
        }
        const auto named = [this](const CLI::App* one) { return one->check_name(help_.method); };
        for (const CLI::App* command : app_.get_subcommands(named)) {
            terminal_.out << command->help("krlimage");
            return 0;
        }
        return helpOnMethod(help_, terminal_);
    }

    void addGallery() {
        CLI::App& app = command("gallery", "Make a contact sheet that shows every effect on a picture",
                                [this] { return makeGallery(gallery_, terminal_); });
        path(app, "PICTURE", gallery_.picture, "", "The picture to use")->required();
        path(app, "-o,--output", gallery_.folder, "DIR", "Folder for index.html and its pictures")
            ->required();
        addJobs(app, gallery_.jobs);
    }

    void addCheck() {
        CLI::App& app = command("check", "Check scripts for mistakes without running them",
                                [this] { return checkScripts(check_, terminal_); });
        paths(app, "SCRIPT", check_.scripts, "", "The scripts to check")->required();
    }

    void addGenerated() {
        CLI::App& docs = command("docs", "Write the method reference, methods.md",
                                 [this] { return writeDocs(docs_, terminal_); });
        path(docs, "-o,--output", docs_.folder, "DIR", "Folder for methods.md")->required();

        CLI::App& completions = command("completions", "Print a completion script for a shell", [this] {
            terminal_.out << completionScript(described(), shell_);
            return 0;
        });
        choice(completions, "SHELL", shell_, "bash|zsh", "The shell to complete for")->required();

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
    CLI::App app_{kPurpose, "krlimage"};
    std::function<int()> chosen_;
    RunOptions run_;
    ApplyOptions apply_;
    ListOptions list_;
    HelpOptions help_;
    GalleryOptions gallery_;
    CheckOptions check_;
    DocsOptions docs_;
    std::string threads_, print_, shell_;
};

}  // namespace

int runCommandLine(const std::vector<std::string>& words, const Terminal& terminal) {
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
