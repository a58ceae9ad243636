#include <deque>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

#include "c/Handles.h"
#include "catalogue/Catalogue.h"
#include "catalogue/ExampleCall.h"

/// Version, codes and catalogue of the C interface.
namespace krl::c {

namespace {

static_assert(static_cast<int>(ValueKind::PictureReference) == KRL_KIND_PICTURE_NAME);
static_assert(static_cast<int>(PixelOrder::RGBA) == KRL_RGBA);

int32_t kindOf(ArgumentKind kind) {
    switch (kind) {
        case ArgumentKind::Integer:
            return KRL_KIND_INTEGER;
        case ArgumentKind::Real:
            return KRL_KIND_REAL;
        case ArgumentKind::Symbol:
            return KRL_KIND_SYMBOL;
        case ArgumentKind::Colour:
            return KRL_KIND_COLOUR;
        case ArgumentKind::Point:
            return KRL_KIND_POINT;
        case ArgumentKind::ColourList:
            return KRL_KIND_COLOUR_LIST;
        case ArgumentKind::SecondImage:
            return KRL_KIND_PICTURE;
        case ArgumentKind::Value:
            return KRL_KIND_ANY;
    }
    return KRL_KIND_ANY;
}

uint32_t flagsOf(const Method& method) {
    const struct {
        bool isSet;
        uint32_t flag;
    } flags[] = {{method.rewritesPicture(), KRL_REWRITES_PICTURE},
                 {method.makesPicture(), KRL_MAKES_PICTURE},
                 {method.makesPictureList(), KRL_MAKES_PICTURE_LIST},
                 {method.needsSecondPicture(), KRL_NEEDS_SECOND_PICTURE},
                 {method.changedPicture() != nullptr, KRL_CHANGES_SECOND_PICTURE},
                 {method.resultDependsOnBands(), KRL_DEPENDS_ON_BANDS},
                 {method.isPerPixel(), KRL_WORKS_PER_PIXEL},
                 {method.managesTheEngine(), KRL_MANAGES_ENGINE},
                 {method.isInert(), KRL_INERT},
                 {method.runsWithoutEngine(), KRL_WORKS_WITHOUT_ENGINE}};
    uint32_t all = 0;
    for (const auto& [isSet, flag] : flags)
        if (isSet) all |= flag;
    return all;
}

/// The catalogue in structures of C. Everything that these point at is kept here, at one place for good.
class Tables {
public:
    explicit Tables(const Catalogue& catalogue) {
        std::vector<const krl_family_info*> families;
        for (const Family& family : catalogue.families()) families.push_back(&add(family));
        root_ = {sizeof root_, keep(std::move(families)), catalogue.families().size()};
    }

    const krl_catalogue_info* root() const { return &root_; }
    const krl_argument_info* find(const Argument* argument) const {
        for (const auto& [known, info] : arguments_)
            if (known == argument) return &info;
        return nullptr;
    }
    const krl_method_info* find(const Method* method) const {
        for (const Entry& entry : entries_)
            if (entry.method == method) return &entry.info;
        return nullptr;
    }

private:
    struct Entry {
        const Method* method;
        krl_method_info info;
    };
    template <class Kept>
    using Rows = std::deque<std::vector<const Kept*>>;

    const krl_family_info& add(const Family& family) {
        std::vector<const krl_method_info*> methods;
        for (const Method* method : family.methods) methods.push_back(&add(*method));
        return families_.emplace_back(krl_family_info{sizeof(krl_family_info), keep(family.name),
                                                      keep(family.heading), keep(std::move(methods)),
                                                      family.methods.size()});
    }

    const krl_method_info& add(const Method& method) {
        std::vector<const krl_argument_info*> arguments;
        for (const Argument& argument : method.arguments()) arguments.push_back(&add(argument));
        std::vector<const krl_entry_info*> results;
        for (const ResultEntry& entry : method.resultEntries())
            results.push_back(
                &results_.emplace_back(krl_entry_info{sizeof(krl_entry_info), entry.key, entry.meaning}));
        krl_method_info info = {};
        info.size = sizeof info;
        info.name = keep(method.shortName());
        info.script_name = method.name();
        info.summary = method.summaryText();
        info.family = keep(method.family());
        info.flags = flagsOf(method);
        info.arguments = keep(std::move(arguments));
        info.argument_count = method.arguments().size();
        info.entries = keep(std::move(results));
        info.entry_count = method.resultEntries().size();
        return entries_.emplace_back(Entry{&method, info}).info;
    }

    const krl_argument_info& add(const Argument& argument) {
        std::vector<const char*> choices;
        for (const SymbolChoice& choice : argument.choices) choices.push_back(choice.name);
        const NumberRange& range = argument.range;
        krl_argument_info info = {};
        info.size = sizeof info;
        info.name = argument.name;
        info.meaning = argument.meaning;
        info.example = keep(exampleText(argument));
        info.kind = kindOf(argument.kind);
        info.from = range.from;
        info.to = range.to;
        info.least = range.least;
        info.most = range.most;
        info.neutral = range.neutral;
        info.choice_count = choices.size();
        info.choices = keep(std::move(choices));
        return arguments_.emplace_back(&argument, info).second;
    }

    const char* keep(std::string text) { return texts_.emplace_back(std::move(text)).c_str(); }
    template <class Kept>
    const Kept* const* keep(std::vector<const Kept*> row) {
        return std::get<Rows<Kept>>(rows_).emplace_back(std::move(row)).data();
    }

    std::deque<std::string> texts_;
    std::tuple<Rows<char>, Rows<krl_argument_info>, Rows<krl_entry_info>, Rows<krl_method_info>,
               Rows<krl_family_info>>
        rows_;
    std::deque<std::pair<const Argument*, krl_argument_info>> arguments_;
    std::deque<krl_entry_info> results_;
    std::deque<Entry> entries_;
    std::deque<krl_family_info> families_;
    krl_catalogue_info root_ = {};
};

const Tables* tables() noexcept {
    return guarded<const Tables*>(nullptr, [] {
        static const Tables made(catalogue());
        return &made;
    });
}

}  // namespace

const krl_argument_info* infoOf(const Argument* argument) noexcept {
    const Tables* known = tables();
    return known && argument ? known->find(argument) : nullptr;
}

}  // namespace krl::c

int32_t krl_interface_version(void) { return KRL_INTERFACE_VERSION; }

const char* krl_release(void) { return KRL_RELEASE; }

const char* krl_code_text(krl_code code) {
    static constexpr const char* kTexts[] = {"ok",
                                             "bad use of the interface",
                                             "no such method",
                                             "no such argument",
                                             "too many arguments",
                                             "an argument is given twice",
                                             "an argument is missing",
                                             "an argument is of the wrong kind",
                                             "no such choice",
                                             "bad picture",
                                             "bad text",
                                             "the method cannot be called",
                                             "the method failed",
                                             "out of memory",
                                             "cancelled",
                                             "bad look"};
    static_assert(std::size(kTexts) == KRL_BAD_LOOK + 1);
    return code >= 0 && code <= KRL_BAD_LOOK ? kTexts[code] : "unknown code";
}

const krl_catalogue_info* krl_catalogue(void) {
    const krl::c::Tables* tables = krl::c::tables();
    return tables ? tables->root() : nullptr;
}

const krl_method_info* krl_find_method(const char* name) {
    const krl::c::Tables* tables = krl::c::tables();
    return tables && name ? tables->find(krl::catalogue().find(name)) : nullptr;
}

krl_value* krl_example(const char* method, size_t argument, int32_t width, int32_t height) {
    return krl::c::guarded<krl_value*>(nullptr, [&]() -> krl_value* {
        const krl::Method* found = method ? krl::catalogue().find(method) : nullptr;
        if (!found || argument >= found->arguments().size()) return nullptr;
        return krl::c::newValue([&] {
            return krl::exampleValue(found->arguments()[argument], {width, height, {}});
        });
    });
}
