#include "player/cli/ChainCall.h"

#include <algorithm>
#include <filesystem>

#include "catalogue/ExampleCall.h"
#include "player/cli/ArgumentCheck.h"
#include "player/cli/Commands.h"
#include "player/cli/MethodFacts.h"
#include "player/lingo/NearestName.h"
#include "player/pictures/Picture.h"

namespace krl::player {

namespace {

bool sameName(std::string_view a, std::string_view b) {
    const auto lower = [](char letter) { return std::tolower(static_cast<unsigned char>(letter)); };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return lower(x) == lower(y); });
}

size_t placeOf(const Method& method, const std::string& name) {
    const auto& arguments = method.arguments();
    for (size_t i = 0; i < arguments.size(); ++i)
        if (sameName(arguments[i].name, name)) return i;
    std::vector<std::string> names;
    for (const Argument& argument : arguments) names.push_back(argument.name);
    throw CommandError(method.shortName() + " has no argument " + name + didYouMean(name, names));
}

/// Pictures and values have no sensible default; every other argument can default to its example.
bool hasStandIn(const Argument& argument) {
    return argument.kind != ArgumentKind::SecondImage && argument.kind != ArgumentKind::Value;
}

}  // namespace

ChainCall::ChainCall(std::string_view text) : written_(text) {
    const WrittenCall call = readCall(text);
    method_ = &requireMethod(call.name);
    const std::string name = method_->shortName();
    if (method_->managesTheEngine())
        throw CommandError(name + " cannot be used here: apply manages the engine and the picture");
    const auto& wanted = method_->arguments();
    given_.resize(wanted.size());
    size_t next = 0;
    for (const WrittenCall::Argument& argument : call.arguments) {
        if (argument.name.empty() && next == wanted.size())
            throw CommandError(countComplaint(*method_, call.arguments.size()));
        const size_t place = argument.name.empty() ? next++ : placeOf(*method_, argument.name);
        if (!given_[place].empty()) throw CommandError(name + ": " + wanted[place].name + " is given twice");
        given_[place] = argument.value;
    }
    for (size_t i = 0; i < wanted.size(); ++i)
        if (given_[i].empty() && !hasStandIn(wanted[i]))
            throw CommandError(name + " needs " + wanted[i].name + ", such as " + wanted[i].name + ": " +
                               exampleText(wanted[i]));
}

std::string ChainCall::lingo(int32_t width, int32_t height) const {
    ExampleSetting setting;
    setting.width = width;
    setting.height = height;
    std::string text = std::string(method_->name()) + "(";
    for (size_t i = 0; i < given_.size(); ++i) {
        if (i > 0) text += ", ";
        text += given_[i].empty() ? exampleText(method_->arguments()[i], setting) : given_[i];
    }
    return text + ")";
}

void ChainCall::evaluate(Session& session) {
    values_.resize(given_.size());
    for (size_t i = 0; i < given_.size(); ++i) {
        if (given_[i].empty()) continue;
        const Argument& argument = method_->arguments()[i];
        values_[i] = session.evaluate(given_[i]);
        const std::string complaint = complaintAbout(argument, values_[i], given_[i]);
        if (!complaint.empty()) throw CommandError(method_->shortName() + ": " + complaint);
    }
}

std::vector<krl::Value> ChainCall::arguments(int32_t width, int32_t height) const {
    ExampleSetting setting;
    setting.width = width;
    setting.height = height;
    std::vector<krl::Value> all = values_;
    for (size_t i = 0; i < all.size(); ++i)
        if (given_[i].empty()) all[i] = exampleValue(method_->arguments()[i], setting);
    return all;
}

bool looksLikeCall(const std::string& word) {
    const size_t bracket = word.find('(');
    const bool called = bracket != std::string::npos && catalogue().find(word.substr(0, bracket));
    if (called && !isPictureName(word)) return true;
    std::error_code unreadable;  // for example, a word too long for a file name
    if (std::filesystem::exists(word, unreadable)) return false;
    if (catalogue().find(word)) return true;
    if (bracket == std::string::npos || bracket == 0) return false;
    const bool named = std::all_of(
        word.begin(), word.begin() + std::ptrdiff_t(bracket),
        [](unsigned char letter) { return std::isalnum(letter) || letter == '_' || letter == ' '; });
    return named && !isPictureName(word);
}

}  // namespace krl::player
