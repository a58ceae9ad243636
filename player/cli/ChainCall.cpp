#include "player/cli/ChainCall.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "catalogue/Arguments.h"
#include "catalogue/Letters.h"
#include "catalogue/Notation.h"
#include "look/CallScope.h"
#include "player/cli/ArgumentCheck.h"
#include "player/cli/Commands.h"
#include "player/cli/MethodFacts.h"
#include "player/pictures/Picture.h"

namespace krl::player {

namespace {

bool isMeasure(const krl::Value& value) {
    return value.as<int32_t>() || value.as<double>() || value.as<Point>();
}

/// Whether a call's argument says where or how much.
bool isOfExtent(std::string_view method, std::string_view argument) {
    const Method* found = catalogue().find(method);
    if (!found || !percentOfExtent(argument)) return false;
    return std::none_of(found->arguments().begin(), found->arguments().end(),
                        [&](const Argument& declared) { return sameLetters(declared.name, argument); });
}

/// Whether a call's argument is none of its method's, but says where and how much, or where a picture goes.
bool isAdded(std::string_view method, std::string_view argument) {
    const Method* found = catalogue().find(method);
    return isOfExtent(method, argument) || (found && isOfPlacement(*found, argument));
}

/// Whether a call has a percentage or the name of an added argument outside of quotation marks.
bool looksRelative(const std::string& text) {
    std::string bare, word;
    bool isQuoted = false;
    for (const char letter : text) {
        if (letter == '"') isQuoted = !isQuoted;
        if (!isQuoted) bare += letter;
    }
    if (bare.find('%') != std::string::npos) return true;
    const std::string method = bare.substr(0, bare.find('('));
    for (const char letter : bare) {
        if (std::isalnum(static_cast<unsigned char>(letter)) || letter == '_') {
            word += letter;
            continue;
        }
        if (letter == ':' && isAdded(method, word)) return true;
        if (letter != ' ') word.clear();
    }
    return false;
}

}  // namespace

ChainCall::ChainCall(std::string_view text) : written_(text), isRelative_(looksRelative(written_)) {
    if (!isRelative_) {
        take(readCall(text));
        return;
    }
    const CallNotation call = notation(kUsualWidth, kUsualHeight);
    WrittenCall own{call.name, {}};
    for (const CallNotation::Argument& argument : call.arguments)
        if (isOfExtent(call.name, argument.name))
            hasExtent_ = true;
        else if (isAdded(call.name, argument.name))
            hasPlacement_ = true;
        else
            own.arguments.push_back({argument.name, writeNotation(argument.value), {}});
    take(own);
}

/// Puts the arguments in their places.
void ChainCall::take(const WrittenCall& call) {
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

CallNotation ChainCall::notation(int32_t width, int32_t height) const {
    try {
        return readCallNotation(written_, callScope(width, height));
    } catch (const NotationError& error) {
        throw CommandError(error.what());
    }
}

std::vector<krl::Value> ChainCall::relativeValues(int32_t width, int32_t height) const {
    CallNotation call = notation(width, height);
    std::erase_if(call.arguments, [&](const CallNotation::Argument& argument) {
        return isAdded(method_->name(), argument.name);
    });
    std::vector<std::string_view> names;
    for (const CallNotation::Argument& argument : call.arguments) names.push_back(argument.name);
    std::vector<krl::Value> values;
    for (const std::optional<size_t>& place : placeArguments(*method_, names))
        values.push_back(place ? std::move(call.arguments[*place].value) : krl::Value());
    return values;
}

std::vector<std::string> ChainCall::lingoArguments(int32_t width, int32_t height) const {
    const std::vector<krl::Value> relative =
        isRelative_ ? relativeValues(width, height) : std::vector<krl::Value>();
    std::vector<std::string> texts;
    for (size_t i = 0; i < given_.size(); ++i)
        if (given_[i].empty())
            texts.push_back(exampleText(method_->arguments()[i], {width, height, {}}));
        else
            texts.push_back(isRelative_ ? writeNotation(relative[i]) : given_[i]);
    return texts;
}

std::string ChainCall::lingo(int32_t width, int32_t height) const {
    std::string text = std::string(method_->name()) + "(", divider;
    for (const std::string& argument : lingoArguments(width, height))
        text += std::exchange(divider, ", ") + argument;
    return text + ")";
}

void ChainCall::evaluate(Session& session, const ChainCall* before) {
    values_.resize(given_.size());
    for (size_t i = 0; i < given_.size(); ++i) {
        if (given_[i].empty()) continue;
        if (before && before->given_[i] == given_[i]) {
            values_[i] = before->values_[i];
            continue;
        }
        const Argument& argument = method_->arguments()[i];
        values_[i] = session.evaluate(given_[i]);
        const std::string complaint = complaintAbout(argument, values_[i], given_[i]);
        if (!complaint.empty()) throw CommandError(method_->shortName() + ": " + complaint);
    }
    placement(kUsualWidth, kUsualHeight);
    if (!hasExtent_) return;
    for (const CallNotation::Argument& argument : notation(kUsualWidth, kUsualHeight).arguments)
        if (const auto* mask = argument.value.as<PictureReference>(); mask && argument.name == "mask")
            masks_[mask->name] = before && before->masks_.contains(mask->name)
                                     ? before->masks_.at(mask->name)
                                     : *session.evaluate(writeNotation(*mask)).as<krl::Picture>();
    extent(kUsualWidth, kUsualHeight);
}

Extent ChainCall::extent(int32_t width, int32_t height) const {
    if (!hasExtent_) return {};
    CallNotation call = notation(width, height);
    std::vector<GivenArgument> given;
    for (CallNotation::Argument& argument : call.arguments) {
        if (!isOfExtent(method_->name(), argument.name)) continue;
        if (const auto* mask = argument.value.as<PictureReference>()) {
            const auto found = masks_.find(mask->name);
            if (found != masks_.end()) argument.value = found->second;
        }
        given.push_back({argument.name, &argument.value});
    }
    try {
        return takeExtent(*method_, given);
    } catch (const ArgumentError& error) {
        throw CommandError(error.what());
    }
}

std::optional<Placement> ChainCall::placement(int32_t width, int32_t height) const {
    if (!hasPlacement_) return std::nullopt;
    const CallNotation call = notation(width, height);
    std::vector<GivenArgument> given;
    for (const CallNotation::Argument& argument : call.arguments)
        given.push_back({argument.name, &argument.value});
    try {
        return takePlacement(*method_, given);
    } catch (const ArgumentError& error) {
        throw CommandError(error.what());
    }
}

const krl::Value& ChainCall::given(size_t index) const {
    static const krl::Value none;
    return isRelative_ && method_->arguments()[index].range.pixels ? none : values_[index];
}

std::vector<krl::Value> ChainCall::arguments(int32_t width, int32_t height) const {
    std::vector<krl::Value> all = values_;
    const std::vector<krl::Value> relative = isRelative_ ? relativeValues(width, height) : all;
    for (size_t i = 0; i < all.size(); ++i) {
        if (given_[i].empty())
            all[i] = standInFor(*method_, method_->arguments()[i], {width, height, {}});
        else if (isMeasure(relative[i]))
            all[i] = relative[i];
    }
    if (const std::optional<Placement> where = placement(width, height))
        placePictures(*method_, *where, width, height, all);
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
