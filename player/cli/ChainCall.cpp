#include "player/cli/ChainCall.h"

#include <algorithm>
#include <filesystem>

#include "catalogue/Arguments.h"
#include "player/cli/ArgumentCheck.h"
#include "player/cli/Commands.h"
#include "player/cli/MethodFacts.h"
#include "player/pictures/Picture.h"

namespace krl::player {

ChainCall::ChainCall(std::string_view text) : written_(text) {
    const WrittenCall call = readCall(text);
    method_ = &requireMethod(call.name);
    const std::string name = method_->shortName();
    if (method_->managesTheEngine())
        throw CommandError(name + " cannot be used here: apply manages the engine and the picture");
    std::vector<std::string_view> names;
    for (const WrittenCall::Argument& argument : call.arguments) names.push_back(argument.name);
    try {
        for (const std::optional<size_t>& place : placeArguments(*method_, names))
            given_.push_back(place ? call.arguments[*place].value : "");
        for (size_t i = 0; i < given_.size(); ++i)
            if (given_[i].empty()) standInFor(*method_, method_->arguments()[i]);
    } catch (const ArgumentError& error) {
        throw CommandError(error.what());
    }
}

std::string ChainCall::lingo(int32_t width, int32_t height) const {
    std::string text = std::string(method_->name()) + "(";
    for (size_t i = 0; i < given_.size(); ++i) {
        if (i > 0) text += ", ";
        text += given_[i].empty() ? exampleText(method_->arguments()[i], {width, height, {}}) : given_[i];
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
    std::vector<krl::Value> all = values_;
    for (size_t i = 0; i < all.size(); ++i)
        if (given_[i].empty()) all[i] = standInFor(*method_, method_->arguments()[i], {width, height, {}});
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
