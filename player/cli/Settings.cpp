#include "player/cli/Settings.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "catalogue/NearestName.h"
#include "player/cli/Commands.h"
#include "player/cli/UserFolder.h"

namespace krl::player {

namespace {

bool isSettable(const CLI::Option* option) { return option->get_configurable() && option->nonpositional(); }

std::vector<const CLI::Option*> settableOf(const CLI::App& command) {
    return command.get_options(isSettable);
}

std::vector<const CLI::App*> commandsOf(const CLI::App& program) {
    return program.get_subcommands([](const CLI::App*) { return true; });
}

const CLI::Option* optionOf(const CLI::App& command, const std::string& name) {
    for (const CLI::Option* option : settableOf(command))
        if (option->check_lname(name)) return option;
    return nullptr;
}

/// The lines of a settings file.
class SettingsFile {
public:
    SettingsFile(const CLI::App& program, std::string name) : program_(program), name_(std::move(name)) {
        try {
            items_ = CLI::ConfigTOML().from_file(name_);
        } catch (const CLI::FileError&) {
            return;  // there is none
        }
        // Sections begin and end with items of their own.
        std::erase_if(items_,
                      [](const CLI::ConfigItem& item) { return item.name == "++" || item.name == "--"; });
        for (const CLI::ConfigItem& item : items_) require(item);
    }

    /// Adds the lines for all commands, or those for this one alone.
    void addTo(std::vector<Setting>& settings, const CLI::App& command, bool isForAll) const {
        for (const CLI::ConfigItem& item : items_)
            if (item.parents.empty() == isForAll && (isForAll || item.parents.front() == command.get_name()))
                if (const CLI::Option* option = optionOf(command, item.name))
                    settings.push_back({name_, option, item.inputs.front()});
    }

private:
    void require(const CLI::ConfigItem& item) const {
        if (item.inputs.size() != 1) throw UsageError(name_ + ": " + item.name + " takes one value");
        std::vector<std::string> names, settings;
        bool isKnown = false;
        for (const CLI::App* command : commandsOf(program_)) {
            names.push_back(command->get_name());
            if (!item.parents.empty() && item.parents != std::vector{command->get_name()}) continue;
            isKnown = isKnown || optionOf(*command, item.name);
            for (const CLI::Option* option : settableOf(*command))
                settings.push_back(option->get_lnames().front());
        }
        if (isKnown) return;
        if (!item.parents.empty() && settings.empty() &&
            std::find(names.begin(), names.end(), item.parents.front()) == names.end())
            throw UsageError(name_ + ": there is no command " + item.parents.front() +
                             didYouMean(item.parents.front(), names));
        throw UsageError(name_ + ": there is no setting " + item.fullname() +
                         didYouMean(item.name, settings));
    }

    const CLI::App& program_;
    std::string name_;
    std::vector<CLI::ConfigItem> items_;
};

}  // namespace

std::string variableFor(const std::string& option) {
    std::string name = "KRLIMAGE_";
    for (const char letter : option)
        name += letter == '-' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    return name;
}

std::vector<Setting> settingsFor(const CLI::App& program, const CLI::App& command) {
    std::vector<Setting> settings;
    if (const std::filesystem::path folder = userFolder(); !folder.empty()) {
        const SettingsFile file(program, (folder / "config").string());
        file.addTo(settings, command, true);
        file.addTo(settings, command, false);
    }
    for (const CLI::Option* option : settableOf(command)) {
        const std::string variable = variableFor(option->get_lnames().front());
        const char* value = std::getenv(variable.c_str());
        if (value && *value) settings.push_back({variable, option, value});
    }
    return settings;
}

}  // namespace krl::player
