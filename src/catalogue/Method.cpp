#include "catalogue/Method.h"

#include <cstring>

namespace krl {

bool Argument::accepts(ArgumentKind parameter) const { return kind == parameter; }

Argument& Method::add(ArgumentKind kind, const char* name, const char* meaning) {
    Argument& argument = arguments_.emplace_back();
    argument.kind = kind;
    argument.name = name;
    argument.meaning = meaning;
    return argument;
}

Method& Method::summary(const char* text) {
    summary_ = text;
    return *this;
}

Method& Method::words(const char* list) {
    words_ = list;
    return *this;
}

Method& Method::gives(const char* key, const char* meaning) {
    results_.push_back({key, meaning});
    return *this;
}

Method& Method::integer(const char* name, NumberRange range, const char* meaning) {
    add(ArgumentKind::Integer, name, meaning).range = range;
    return *this;
}

Method& Method::real(const char* name, NumberRange range, const char* meaning) {
    add(ArgumentKind::Real, name, meaning).range = range;
    return *this;
}

Method& Method::symbol(const char* name, std::vector<SymbolChoice> choices, UnknownSymbol unknown,
                       const char* meaning) {
    Argument& argument = add(ArgumentKind::Symbol, name, meaning);
    argument.choices = std::move(choices);
    argument.unknown = unknown;
    argument.example = argument.choices.front().name;
    return *this;
}

Method& Method::colour(const char* name, Colour example, const char* meaning) {
    add(ArgumentKind::Colour, name, meaning).colourExample = example;
    return *this;
}

Method& Method::point(const char* name, PlaceExample example, const char* meaning) {
    add(ArgumentKind::Point, name, meaning).placeExample = example;
    return *this;
}

Method& Method::colourList(const char* name, ListKeys keys, std::vector<ColourStop> example,
                           const char* meaning) {
    Argument& argument = add(ArgumentKind::ColourList, name, meaning);
    argument.listKeys = keys;
    argument.stops = std::move(example);
    return *this;
}

Method& Method::image(const char* name, ImageTests tests, const char* example, const char* meaning) {
    Argument& argument = add(ArgumentKind::SecondImage, name, meaning);
    argument.imageTests = tests;
    argument.example = example;
    return *this;
}

Method& Method::value(const char* name, const char* example, const char* meaning) {
    add(ArgumentKind::Value, name, meaning).example = example;
    return *this;
}

Method& Method::thenCompare() {
    last().thenCompare = true;
    return *this;
}

Method& Method::failsWith(const char* text) {
    last().inputFailure = text;
    return *this;
}

Method& Method::mustPass(std::function<bool(const ArgumentValue&)> check, const char* text) {
    last().check = std::move(check);
    last().checkFailure = text;
    return *this;
}

Method& Method::showing(const char* symbol) {
    last().example = symbol;
    return *this;
}

Method& Method::inputFailure(const char* text) {
    inputFailure_ = text;
    return *this;
}

Method& Method::failed(const char* text) {
    failed_ = text;
    return *this;
}

Method& Method::needsEngine() {
    engineFailure_ = "Image xtra not initialised (Image)";
    return *this;
}

Method& Method::managesEngine() {
    managesEngine_ = true;
    return *this;
}

Method& Method::dependsOnBands() {
    dependsOnBands_ = true;
    return *this;
}

Method& Method::worksPerPixel() {
    perPixel_ = true;
    return *this;
}

Method& Method::leavesPicture() {
    leavesPicture_ = true;
    return *this;
}

Method& Method::inert() {
    inert_ = true;
    return *this;
}

Method& Method::givesPictureList() {
    pictureList_ = true;
    return leavesPicture();
}

Method& Method::givesPicture(const char* key, const char* meaning) {
    pictureKey_ = key;
    return gives(key, meaning).leavesPicture();
}

Method& Method::worksWithoutEngine() {
    withoutEngine_ = true;
    return *this;
}

Method& Method::asksPlayer() {
    asksPlayer_ = true;
    return *this;
}

Method& Method::keepsLocksOnFailure() {
    keepsLocks_ = true;
    return *this;
}

Method& Method::readsItself() {
    readsItself_ = true;
    return *this;
}

Method& Method::silent() {
    silent_ = true;
    return *this;
}

Method& Method::does(MethodBody body) {
    body_ = std::move(body);
    return *this;
}

std::string Method::shortName() const {
    constexpr size_t prefix = std::char_traits<char>::length("krlImage");
    std::string shortened = name_ + prefix;
    // An opening run of capitals is an abbreviation and stays: YUVBlur, HSVtoRGB.
    if (shortened.size() > 1 && !(shortened[1] >= 'A' && shortened[1] <= 'Z'))
        shortened[0] = static_cast<char>(shortened[0] - 'A' + 'a');
    return shortened;
}

const char* Method::inputFailureText(const Argument& argument) const {
    return argument.inputFailure ? argument.inputFailure : inputFailure_;
}

const Argument* Method::firstPicture() const {
    for (const Argument& argument : arguments_)
        if (argument.kind == ArgumentKind::SecondImage) return &argument;
    return nullptr;
}

bool Method::needsSecondPicture() const { return firstPicture() != nullptr; }

const Argument* Method::changedPicture() const {
    return leavesPicture_ && !makesPicture() && results_.empty() ? firstPicture() : nullptr;
}

bool Method::fitsEffect() const {
    if (!hasEffect_) return managesEngine_ || body_ != nullptr;
    if (parameters_.size() != arguments_.size()) return false;
    for (size_t i = 0; i < parameters_.size(); ++i)
        if (!arguments_[i].accepts(parameters_[i])) return false;
    return true;
}

}  // namespace krl
