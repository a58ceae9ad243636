#include <array>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "krlimage.h"

/// Any text as a look: refused with a line and a reason, or a look that is the same once it is written and
/// read again, that takes the ends of its parameters' ranges, and that can be applied and changed.
namespace krl::fuzz {

namespace {

constexpr int32_t kSide = 6;

/// Two looks of one input, freed in any case.
struct Looks {
    ~Looks() {
        krl_look_free(first);
        krl_look_free(second);
    }
    krl_look* first = nullptr;
    krl_look* second = nullptr;
};

std::string written(const krl_look* look) {
    std::string text(krl_look_write(look, nullptr, 0) + 1, '\0');
    krl_look_write(look, text.data(), text.size());
    text.pop_back();
    return text;
}

/// The code of a call, whose result must agree with it.
template <class Call>
krl_code codeOf(const Call& call) {
    krl_result* result = nullptr;
    const krl_code code = call(&result);
    if (!result) report("a call without a result");
    if (krl_result_code(result) != code) report("a result of another code");
    if ((code == KRL_OK) != (*krl_result_message(result) == '\0')) report("a message for nothing, or none");
    krl_result_free(result);
    return code;
}

krl_code read(const std::string& text, krl_look*& look) {
    krl_result* result = nullptr;
    const krl_code code = krl_look_read(text.c_str(), &look, &result);
    if ((code == KRL_OK) != (look != nullptr)) report("a look of a failure, or none");
    if (code != KRL_OK && krl_result_line(result) < 1) report("a refusal without a line");
    if (std::string(krl_result_message(result)).find('\n') != std::string::npos)
        report(std::string("not one line: ") + krl_result_message(result));
    krl_result_free(result);
    return code;
}

void expectSameOnceWritten(const krl_look* look, krl_look*& again) {
    const std::string text = written(look);
    if (read(text, again) != KRL_OK) report("cannot read what it wrote:\n" + text);
    if (written(again) != text) report("writes another text:\n" + text + "and\n" + written(again));
    if (krl_look_call_count(look) != krl_look_call_count(again) ||
        krl_look_parameter_count(look) != krl_look_parameter_count(again))
        report("has lost a call or a parameter:\n" + text);
}

void setParameters(krl_look* look) {
    for (size_t i = 0; i < krl_look_parameter_count(look); ++i) {
        krl_parameter_info info{};
        info.size = sizeof info;
        if (krl_look_parameter(look, i, &info) != KRL_OK) report("a parameter without facts");
        const std::string name = info.name;
        const std::string value = info.value, from = info.from, to = info.to;
        const auto set = [&](const std::string& text) {
            return codeOf(
                [&](krl_result** out) { return krl_look_set(look, name.c_str(), text.c_str(), out); });
        };
        set(from);
        set(to);
        if (set(value) != KRL_OK) report("parameter " + name + " refuses its own value " + value);
    }
}

void apply(krl_look* look, uint32_t first) {
    static krl_engine* const engine = krl_engine_new(1);
    std::array<uint8_t, size_t{kSide} * kSide * 4> pixels{}, others{};
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(first + 37 * i);
    const krl_picture picture{sizeof picture, pixels.data(), kSide, kSide, kSide * 4, KRL_BGRA};
    const krl_picture other{sizeof other, others.data(), kSide, kSide, kSide * 4, KRL_BGRA};
    for (size_t i = 0; i < krl_look_picture_count(look); ++i)
        krl_look_set_picture(look, krl_look_picture_name(look, i), &other);
    codeOf([&](krl_result** out) { return krl_look_apply(engine, look, &picture, out); });
}

/// Adds pieces of the text to a look, as somebody who writes one would.
void change(krl_look* look, Bytes bytes) {
    while (!bytes.empty()) {
        const std::string text = bytes.text(bytes.below(24)), more = bytes.text(bytes.below(8));
        codeOf([&](krl_result** out) {
            switch (bytes.below(4)) {
                case 0:
                    return krl_look_set_title(look, text.c_str(), out);
                case 1:
                    return krl_look_set_description(look, text.c_str(), out);
                case 2:
                    return krl_look_add_call(look, text.c_str(), out);
                default:
                    return krl_look_add_parameter(look, text.c_str(), more.c_str(), nullptr, more.c_str(),
                                                  text.c_str(), out);
            }
        });
    }
}

}  // namespace

int readLook(const uint8_t* data, size_t size) {
    Looks looks;
    const std::string text = Bytes(data, size).rest();
    if (read(text, looks.first) == KRL_OK) {
        expectSameOnceWritten(looks.first, looks.second);
        setParameters(looks.first);
        apply(looks.first, static_cast<uint32_t>(size));
    } else {
        looks.first = krl_look_new();
    }
    change(looks.first, Bytes(data, size));
    krl_look_free(std::exchange(looks.second, nullptr));
    const bool isWhole = *krl_look_title(looks.first) && krl_look_call_count(looks.first) > 0;
    if (isWhole) expectSameOnceWritten(looks.first, looks.second);
    return 0;
}

}  // namespace krl::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return krl::fuzz::readLook(data, size);
}
