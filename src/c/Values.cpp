#include <algorithm>
#include <cstring>

#include "c/Handles.h"
#include "c/Pictures.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Notation.h"
#include "look/CallScope.h"
#include "look/Extent.h"

/// Values of the C interface: makers, readers, and their text.
using krl::Value;
using krl::c::contentOf;
using krl::c::guarded;
using krl::c::handleOf;
using krl::c::newValue;
using krl::c::valueOf;

namespace krl::c {

void copyText(const std::string& text, char* buffer, size_t size) {
    if (!buffer || size == 0) return;
    const size_t count = std::min(text.size(), size - 1);
    std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
}

namespace {

/// Lists within lists, this one among them: copying and freeing a value takes stack for each.
constexpr int kDeepest = 64;

int depthOf(const Value& value) {
    int inner = 0;
    if (const auto* list = value.as<ListValue>()) {
        for (const Value& item : *list) inner = std::max(inner, depthOf(item));
    } else if (const auto* properties = value.as<PropertyListValue>()) {
        for (const auto& [key, item] : *properties) inner = std::max({inner, depthOf(key), depthOf(item)});
    } else {
        return 0;
    }
    return inner + 1;
}

/// Copies what `value` holds if it is a `Kind`.
template <class Kind>
krl_code get(const krl_value* value, Kind& out) {
    if (!value) return KRL_BAD_USE;
    const Kind* content = contentOf<Kind>(value);
    if (!content) return KRL_WRONG_KIND;
    out = *content;
    return KRL_OK;
}

std::string_view required(const char* text, const char* what) {
    if (!text) throw NotationError(std::string("there is no ") + what, 0);
    return text;
}

/// What `read` makes of a text; null where it throws, and then `problem` says why.
template <class Read>
krl_value* readOrExplain(char* problem, size_t problem_size, const Read& read) noexcept {
    copyText("", problem, problem_size);
    try {
        return handleOf(new Value(read()));
    } catch (const NotationError& error) {
        copyText(error.what(), problem, problem_size);
    } catch (...) {
        copyText(krl_code_text(KRL_OUT_OF_MEMORY), problem, problem_size);
    }
    return nullptr;
}

/// The value of an argument as a call has it. The text is a parameter of that call: it cannot end it.
Value argumentValue(const std::string& method, const std::string& argument, const std::string& text,
                    int32_t width, int32_t height) {
    if (!catalogue().find(method)) throw NotationError("no method is called " + method, 0);
    bool isArgument = percentOfExtent(argument).has_value();
    NotationScope scope =
        callScope(width, height, [&](const Argument* declared) { isArgument = isArgument || declared; });
    scope.named = [&](std::string_view) { return &text; };
    const CallNotation call = readCallNotation(method + '(' + argument + ": $value)", scope);
    if (!isArgument || call.arguments.front().name != argument)
        throw NotationError(method + " has no argument " + argument, 0);
    return call.arguments.front().value;
}

}  // namespace

}  // namespace krl::c

using krl::c::depthOf;
using krl::c::get;
using krl::c::kDeepest;
using krl::c::readOrExplain;
using krl::c::required;

krl_value* krl_nothing(void) {
    return newValue([] { return Value(); });
}
krl_value* krl_integer(int32_t number) {
    return newValue([=] { return Value(number); });
}
krl_value* krl_real(double number) {
    return newValue([=] { return Value(number); });
}
krl_value* krl_symbol(const char* name) {
    return name ? newValue([=] { return Value(krl::Symbol{name}); }) : nullptr;
}
krl_value* krl_text(const char* text) {
    return text ? newValue([=] { return Value(std::string(text)); }) : nullptr;
}
krl_value* krl_colour(uint8_t red, uint8_t green, uint8_t blue) {
    return newValue([=] { return Value(krl::Colour(red, green, blue)); });
}
krl_value* krl_point(int32_t x, int32_t y) {
    return newValue([=] { return Value(krl::Point{.y = y, .x = x}); });
}
krl_value* krl_list(void) {
    return newValue([] { return Value(krl::ListValue()); });
}
krl_value* krl_property_list(void) {
    return newValue([] { return Value(krl::PropertyListValue()); });
}
krl_value* krl_picture_value(const krl_picture* picture) {
    if (!krl::c::isPicture(picture)) return nullptr;
    return newValue([=] { return Value(krl::c::pictureOf(*picture)); });
}
krl_value* krl_copy(const krl_value* value) {
    return value ? newValue([=] { return *valueOf(value); }) : nullptr;
}
void krl_value_free(krl_value* value) { delete valueOf(value); }

krl_code krl_list_add(krl_value* list, krl_value* item) {
    if (list == item) return KRL_BAD_USE;
    const std::unique_ptr<Value> taken(valueOf(item));
    if (!list || !item) return KRL_BAD_USE;
    auto* items = valueOf(list)->as<krl::ListValue>();
    if (!items) return KRL_WRONG_KIND;
    if (depthOf(*taken) >= kDeepest) return KRL_BAD_USE;
    return guarded(KRL_OUT_OF_MEMORY, [&] {
        items->push_back(std::move(*taken));
        return KRL_OK;
    });
}

krl_code krl_property_list_add(krl_value* list, krl_value* key, krl_value* item) {
    if (list == item || list == key || (key && key == item)) return KRL_BAD_USE;
    const std::unique_ptr<Value> takenKey(valueOf(key)), taken(valueOf(item));
    if (!list || !key || !item) return KRL_BAD_USE;
    auto* entries = valueOf(list)->as<krl::PropertyListValue>();
    if (!entries) return KRL_WRONG_KIND;
    if (depthOf(*takenKey) >= kDeepest || depthOf(*taken) >= kDeepest) return KRL_BAD_USE;
    return guarded(KRL_OUT_OF_MEMORY, [&] {
        entries->emplace_back(std::move(*takenKey), std::move(*taken));
        return KRL_OK;
    });
}

krl_value* krl_parse(const char* text, char* problem, size_t problem_size) {
    return readOrExplain(problem, problem_size, [&] { return krl::readNotation(required(text, "text")); });
}

krl_value* krl_parse_argument(const char* method, const char* argument, const char* text, int32_t width,
                              int32_t height, char* problem, size_t problem_size) {
    return readOrExplain(problem, problem_size, [&] {
        return krl::c::argumentValue(std::string(required(method, "method name")),
                                     std::string(required(argument, "argument name")),
                                     std::string(required(text, "text")), width, height);
    });
}

size_t krl_write(const krl_value* value, char* text, size_t text_size) {
    return guarded(size_t{0}, [&] {
        const std::string written = value ? krl::writeNotation(*valueOf(value)) : "";
        krl::c::copyText(written, text, text_size);
        return written.size();
    });
}

int32_t krl_kind(const krl_value* value) {
    return value ? static_cast<int32_t>(valueOf(value)->kind()) : KRL_KIND_NOTHING;
}

krl_code krl_get_integer(const krl_value* value, int32_t* number) {
    return number ? get(value, *number) : KRL_BAD_USE;
}

krl_code krl_get_real(const krl_value* value, double* number) {
    if (!number) return KRL_BAD_USE;
    int32_t whole = 0;
    if (get(value, whole) != KRL_OK) return get(value, *number);
    *number = whole;
    return KRL_OK;
}

krl_code krl_get_colour(const krl_value* value, uint8_t* red, uint8_t* green, uint8_t* blue) {
    if (!red || !green || !blue) return KRL_BAD_USE;
    krl::Colour colour;
    if (const krl_code code = get(value, colour)) return code;
    *red = colour.red();
    *green = colour.green();
    *blue = colour.blue();
    return KRL_OK;
}

krl_code krl_get_point(const krl_value* value, int32_t* x, int32_t* y) {
    if (!x || !y) return KRL_BAD_USE;
    krl::Point point;
    if (const krl_code code = get(value, point)) return code;
    *x = point.x;
    *y = point.y;
    return KRL_OK;
}

const char* krl_get_text(const krl_value* value) {
    if (const auto* symbol = contentOf<krl::Symbol>(value)) return symbol->name.c_str();
    if (const auto* text = contentOf<std::string>(value)) return text->c_str();
    if (const auto* reference = contentOf<krl::PictureReference>(value)) return reference->name.c_str();
    return nullptr;
}

krl_code krl_get_picture(const krl_value* value, krl_picture* picture) {
    if (!picture || picture->size < sizeof(krl_picture) || !value) return KRL_BAD_USE;
    const auto* content = contentOf<krl::Picture>(value);
    if (!content) return KRL_WRONG_KIND;
    *picture = krl::c::describe(*content);
    return KRL_OK;
}

size_t krl_count(const krl_value* list) {
    if (const auto* items = contentOf<krl::ListValue>(list)) return items->size();
    const auto* entries = contentOf<krl::PropertyListValue>(list);
    return entries ? entries->size() : 0;
}

const krl_value* krl_item(const krl_value* list, size_t index) {
    if (index >= krl_count(list)) return nullptr;
    if (const auto* items = contentOf<krl::ListValue>(list)) return handleOf(&(*items)[index]);
    return handleOf(&(*contentOf<krl::PropertyListValue>(list))[index].second);
}

const krl_value* krl_key(const krl_value* list, size_t index) {
    const auto* entries = contentOf<krl::PropertyListValue>(list);
    return entries && index < entries->size() ? handleOf(&(*entries)[index].first) : nullptr;
}

const krl_value* krl_find(const krl_value* list, const char* key) {
    const auto* entries = contentOf<krl::PropertyListValue>(list);
    if (!entries || !key) return nullptr;
    return guarded<const krl_value*>(nullptr, [&] { return handleOf(krl::findProperty(*entries, key)); });
}
