#include <array>
#include <chrono>
#include <string>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "krlimage.h"

/// The functions of the C interface in any order, on handles of any state and on none.
namespace krl::fuzz {

namespace {

constexpr size_t kHandles = 6;
constexpr int32_t kSide = 6;

/// Engines that outlive a run, one for each number of bands: making one takes longer than a run.
krl_engine* keptEngine(uint32_t bands) {
    static const std::array<krl_engine*, 4> engines = {krl_engine_new(0), krl_engine_new(1),
                                                       krl_engine_new(2), krl_engine_new(3)};
    return engines[bands];
}

bool isKept(const krl_engine* engine) {
    for (uint32_t bands = 0; bands < 4; ++bands)
        if (engine == keptEngine(bands)) return true;
    return false;
}

class Session {
public:
    explicit Session(Bytes bytes) : bytes_(bytes) {
        for (uint32_t bands = 0; bands < 4; ++bands) {
            krl_engine_resume(keptEngine(bands));
            krl_engine_keep_memory(keptEngine(bands), 0);
        }
    }
    ~Session() {
        for (krl_value* value : values_) krl_value_free(value);
        for (krl_result* result : results_) krl_result_free(result);
        for (krl_engine* engine : engines_) free(engine);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void run() {
        while (!bytes_.empty()) step();
    }

private:
    static void free(krl_engine* engine) {
        if (!isKept(engine)) krl_engine_free(engine);
    }

    size_t place() { return bytes_.below(kHandles); }
    krl_value*& value() { return values_[place()]; }
    const krl_value* anyValue() { return bytes_.oneIn(8) ? nullptr : value(); }
    krl_engine* engine() { return bytes_.oneIn(16) ? nullptr : engines_[bytes_.below(2)]; }

    void put(krl_value* fresh) {
        krl_value*& slot = value();
        krl_value_free(slot);
        slot = fresh;
    }
    /// Takes a value out of its slot, for a function that takes it over.
    krl_value* taken() {
        krl_value*& slot = value();
        krl_value* const given = slot;
        slot = nullptr;
        return given;
    }

    krl_picture picture() {
        krl_picture made{sizeof made, pixels_.data(), kSide,
                         kSide,       kSide * 4,      static_cast<int32_t>(bytes_.below(2))};
        if (!bytes_.oneIn(8)) return made;
        switch (bytes_.below(5)) {
            case 0:
                made.size = bytes_.below(80);
                break;
            case 1:
                made.pixels = nullptr;
                break;
            case 2:
                made.width = bytes_.raw<int32_t>();
                if (made.width <= kSide) break;
                made.row_bytes = bytes_.below(64);  // too short for so wide a picture
                break;
            case 3:
                made.height = -static_cast<int32_t>(bytes_.below(9));
                break;
            default:
                made.order = bytes_.raw<int32_t>();
        }
        return made;
    }

    std::string methodName() {
        const krl_catalogue_info* all = krl_catalogue();
        const krl_family_info& family =
            *all->families[bytes_.below(static_cast<uint32_t>(all->family_count))];
        if (bytes_.oneIn(16)) return bytes_.text(8);
        return family.methods[bytes_.below(static_cast<uint32_t>(family.method_count))]->name;
    }

    void call() {
        const std::string name = methodName();
        const krl_picture picture = this->picture();
        std::vector<krl_argument> arguments;
        const krl_method_info* method = krl_find_method(name.c_str());
        for (uint32_t count = bytes_.below(4); count > 0; --count) {
            const char* argument = nullptr;
            if (method && method->argument_count > 0 && bytes_.below(2))
                argument =
                    method->arguments[bytes_.below(static_cast<uint32_t>(method->argument_count))]->name;
            arguments.push_back({argument, anyValue()});
        }
        const krl_picture other = this->picture();
        keep([&](krl_result** out) {
            const krl_picture* const to = bytes_.oneIn(8) ? nullptr : &picture;
            if (bytes_.below(2))
                return krl_call(engine(), to, name.c_str(), arguments.data(), arguments.size(), out);
            return krl_call_into(engine(), bytes_.oneIn(8) ? nullptr : &other, to, name.c_str(),
                                 arguments.data(), arguments.size(), out);
        });
    }

    void apply() {
        const krl_picture picture = this->picture();
        std::string text = methodName();
        if (bytes_.below(2)) text += '(' + bytes_.text(bytes_.below(24)) + ')';
        const krl_picture other = this->picture();
        keep([&](krl_result** out) {
            return bytes_.below(2) ? krl_apply(engine(), &picture, text.c_str(), out)
                                   : krl_apply_into(engine(), &other, &picture, text.c_str(), out);
        });
    }

    /// A call whose code, result and texts must agree.
    template <class Call>
    void keep(const Call& call) {
        const bool wanted = bytes_.below(2);
        krl_result* result = nullptr;
        const krl_code code = call(wanted ? &result : nullptr);
        if (wanted && !result && code != KRL_OUT_OF_MEMORY) report("a call without a result");
        if (result && krl_result_code(result) != code) report("a result of another code");
        if (result && (code == KRL_OK) != (*krl_result_message(result) == '\0'))
            report("a message for nothing, or none");
        if (result && code == KRL_OK && *krl_result_error(result) != '\0') report("an error of a success");
        krl_result*& slot = results_[bytes_.below(2)];
        krl_result_free(slot);
        slot = result;
        const krl_value* tree = krl_result_value(slot);
        if (bytes_.below(2)) put(krl_copy(tree));
    }

    void read() {
        const krl_value* value = anyValue();
        int32_t whole = 0, other = 0;
        double real = 0;
        uint8_t red = 0, green = 0, blue = 0;
        krl_picture picture{sizeof picture, nullptr, 0, 0, 0, 0};
        krl_get_integer(value, &whole);
        krl_get_real(value, &real);
        krl_get_colour(value, &red, &green, &blue);
        krl_get_point(value, &whole, &other);
        krl_get_text(value);
        if (krl_get_picture(value, &picture) == KRL_OK) total_ += *static_cast<uint8_t*>(picture.pixels);
        for (size_t i = 0; i <= krl_count(value); ++i) {
            total_ += krl_kind(krl_item(value, i));
            total_ += krl_kind(krl_key(value, i));
        }
        krl_find(value, "error");
        std::vector<char> room(bytes_.below(40));
        const size_t length = krl_write(value, room.empty() ? nullptr : room.data(), room.size());
        if (!room.empty() && std::string(room.data()).size() > length)
            report("a text longer than its length");
    }

    void parse() {
        char problem[24] = "";
        const std::string text = bytes_.text(bytes_.below(40));
        krl_value* made = krl_parse(text.c_str(), problem, sizeof problem);
        if (!made && *problem == '\0') report("a text is refused without a reason");
        if (made) {
            std::string again(krl_write(made, nullptr, 0) + 1, '\0');
            krl_write(made, again.data(), again.size());
            krl_value* twice = krl_parse(again.c_str(), nullptr, 0);
            if (!twice) report("cannot read what it wrote: " + again);
            krl_value_free(twice);
        }
        put(made);
    }

    void make() {
        const krl_picture picture = this->picture();
        switch (bytes_.below(10)) {
            case 0:
                return put(krl_integer(bytes_.raw<int32_t>()));
            case 1:
                return put(krl_real(bytes_.raw<double>()));
            case 2:
                return put(krl_symbol(bytes_.oneIn(8) ? nullptr : bytes_.text(6).c_str()));
            case 3:
                return put(krl_text(bytes_.text(6).c_str()));
            case 4:
                return put(krl_colour(bytes_.byte(), bytes_.byte(), bytes_.byte()));
            case 5:
                return put(krl_point(bytes_.raw<int32_t>(), bytes_.raw<int8_t>()));
            case 6:
                return put(krl_list());
            case 7:
                return put(krl_property_list());
            case 8:
                return put(krl_picture_value(bytes_.oneIn(8) ? nullptr : &picture));
            default:
                return put(krl_copy(anyValue()));
        }
    }

    void step() {
        switch (bytes_.below(12)) {
            case 0:
            case 1:
                return make();
            case 2:
                return read();
            case 3:
                return parse();
            case 4: {
                krl_value* const list = value();
                krl_value* const item = taken();
                krl_list_add(item == list ? nullptr : list, item);
                return;
            }
            case 5: {
                krl_value* const list = value();
                krl_value *const key = taken(), *const item = taken();
                krl_property_list_add(key == list || item == list ? nullptr : list, key, item);
                return;
            }
            case 6:
                return put(krl_example(methodName().c_str(), bytes_.below(6), kSide, kSide));
            case 7: {
                krl_engine*& slot = engines_[bytes_.below(2)];
                free(slot);
                slot = bytes_.oneIn(256) ? krl_engine_new(static_cast<int32_t>(bytes_.below(5)) - 1)
                                         : keptEngine(bytes_.below(4));
                return;
            }
            case 8:
                krl_engine_cancel(engine());
                return bytes_.below(2) ? krl_engine_resume(engine()) : void();
            case 9:
                return apply();
            default:
                return call();
        }
    }

    Bytes bytes_;
    std::array<krl_value*, kHandles> values_{};
    std::array<krl_result*, 2> results_{};
    std::array<krl_engine*, 2> engines_{keptEngine(1), nullptr};
    std::array<uint8_t, size_t{kSide} * kSide * 4> pixels_{};
    int64_t total_ = 0;
};

}  // namespace

}  // namespace krl::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    krl::fuzz::Session(krl::fuzz::Bytes(data, size)).run();
    return 0;
}
