#include <filesystem>
#include <nlohmann/json.hpp>
#include <ostream>

#include "player/cli/Commands.h"
#include "player/cli/LookFiles.h"
#include "player/cli/TextFile.h"

namespace krl::player {

namespace {

using Json = nlohmann::ordered_json;

Json jsonOf(const NamedLook& named, const Look& look) {
    Json json = {{"name", named.name}, {"title", look.title()}, {"description", look.description()}};
    if (!named.file.empty()) json["file"] = named.file.string();
    json["parameters"] = Json::array();
    for (const LookParameter& parameter : look.parameters()) {
        Json entry = {{"name", parameter.name}, {"value", parameter.standard}};
        if (!parameter.from.empty()) entry["range"] = {parameter.from, parameter.to};
        if (!parameter.meaning.empty()) entry["meaning"] = parameter.meaning;
        json["parameters"].push_back(entry);
    }
    json["calls"] = Json::array();
    for (const LookStep& step : look.steps()) json["calls"].push_back(step.text);
    return json;
}

int listLooks(bool json, const Terminal& terminal) {
    Json all = Json::array();
    size_t width = 0;
    const std::vector<NamedLook> looks = knownLooks();
    for (const NamedLook& look : looks) width = std::max(width, look.name.size());
    for (const NamedLook& named : looks) {
        const Look look = parsedLook(named);
        if (json) {
            all.push_back(jsonOf(named, look));
            continue;
        }
        terminal.out << named.name << std::string(width - named.name.size() + 2, ' ')
                     << (look.description().empty() ? look.title() : look.description()) << '\n';
    }
    if (json) terminal.out << all.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    return 0;
}

int showLook(const LookOptions& options, const Terminal& terminal) {
    if (options.words.size() != 1) throw UsageError("look show: name one look");
    const NamedLook named = requireLook(options.words.front());
    if (options.json)
        terminal.out << jsonOf(named, parsedLook(named)).dump(2, ' ', false, Json::error_handler_t::replace)
                     << '\n';
    else
        terminal.out << named.text << (named.text.ends_with('\n') ? "" : "\n");
    return 0;
}

int saveLook(const LookOptions& options, const Terminal& terminal) {
    if (options.words.size() < 2)
        throw UsageError("look save: name a file and at least one call, as in look save warm.krl 'sepia'");
    const std::filesystem::path file = options.words.front();
    Look look;
    try {
        look.setTitle(options.title.empty() ? file.stem().string() : options.title);
        look.setDescription(options.description);
        for (const std::string& parameter : options.parameters)
            look.addParameter(Look::readParameter(parameter));
        for (size_t i = 1; i < options.words.size(); ++i) look.addCall(options.words[i]);
        Look::read(look.write());
    } catch (const LookError& error) {
        throw CommandError("cannot save " + file.string() + ": " + error.what());
    }
    writeText(file, look.write());
    terminal.out << file.string() << '\n';
    return 0;
}

int checkLooks(const LookOptions& options, const Terminal& terminal) {
    if (options.words.empty()) throw UsageError("look check: name at least one look");
    size_t mistakes = 0;
    for (const std::string& word : options.words) try {
            parsedLook(requireLook(word));
        } catch (const CommandError& error) {
            terminal.err << error.what() << '\n';
            ++mistakes;
        }
    return mistakes > 0 ? 1 : 0;
}

}  // namespace

int workOnLooks(const LookOptions& options, const Terminal& terminal) {
    if (options.action == "list") return listLooks(options.json, terminal);
    if (options.action == "show") return showLook(options, terminal);
    if (options.action == "save") return saveLook(options, terminal);
    return checkLooks(options, terminal);
}

}  // namespace krl::player
