#include "catalogue/Catalogue.h"

#include <algorithm>
#include <cctype>
#include <iterator>

#include "catalogue/Letters.h"

namespace krl {

namespace {

struct Heading {
    const char* family;
    const char* text;
};

/// Families in reading order. One that is not named here is shown by its folder's name, after the effects
/// that rewrite a picture.
constexpr Heading kHeadings[] = {{"tone", "Tone"},
                                 {"colour", "Colour"},
                                 {"hue", "Hue"},
                                 {"film", "Film"},
                                 {"blur", "Blur and sharpen"},
                                 {"edges", "Edges"},
                                 {"stylise", "Stylise"},
                                 {"warp", "Warps"},
                                 {"composite", "Compositing and glows"},
                                 {"key", "Keys"},
                                 {"alpha", "Alpha"},
                                 {"generate", "Generators"},
                                 {"", ""},
                                 {"fields", "Fields and sizes"},
                                 {"engine", "Engine"},
                                 {"inert", "Without effect"}};

const Heading* headingOf(std::string_view family) {
    const auto named = [&](const Heading& heading) { return family == heading.family; };
    const Heading* found = std::find_if(std::begin(kHeadings), std::end(kHeadings), named);
    return found != std::end(kHeadings) ? found : headingOf("");
}

std::string capitalised(std::string text) {
    if (!text.empty()) text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

}  // namespace

void Catalogue::family(const char* name) {
    const auto named = [&](const Family& family) { return family.name == name; };
    auto found = std::find_if(families_.begin(), families_.end(), named);
    if (found == families_.end()) {
        const Heading* heading = headingOf(name);
        const auto comesLater = [&](const Family& family) { return headingOf(family.name) > heading; };
        found = families_.insert(std::find_if(families_.begin(), families_.end(), comesLater),
                                 {name, *heading->text ? heading->text : capitalised(name), {}});
    }
    current_ = static_cast<size_t>(found - families_.begin());
}

Method& Catalogue::add(Method entry) {
    if (families_.empty()) family("extra");
    Method& added = entries_.emplace_back(std::move(entry));
    Family& family = families_[current_];
    added.family_ = family.name;
    added.heading_ = family.heading;
    family.methods.push_back(&added);
    return added;
}

std::vector<const Method*> Catalogue::methods() const {
    std::vector<const Method*> all;
    for (const Family& family : families_)
        all.insert(all.end(), family.methods.begin(), family.methods.end());
    return all;
}

const Method* Catalogue::find(std::string_view name) const {
    constexpr std::string_view prefix = "krlImage";
    for (const Method& entry : entries_) {
        const std::string_view full = entry.name();
        if (sameLetters(name, full) || sameLetters(name, full.substr(prefix.size()))) return &entry;
    }
    return nullptr;
}

const Catalogue& catalogue() {
    static const Catalogue made = [] {
        Catalogue entries;
        describeEveryEffect(entries);
        entries.family("engine");
        describeEngineMethods(entries);
        return entries;
    }();
    return made;
}

}  // namespace krl
