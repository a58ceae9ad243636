#include <map>
#include <optional>
#include <string>

#include "Values.h"

namespace krl::python {

namespace {

using Engine = std::unique_ptr<krl_engine, Free>;
using Result = std::unique_ptr<krl_result, Free>;

/// Engines that serve no call, by their bands. An engine takes milliseconds to make. The interpreter's lock
/// guards the list; it is never freed, since the interpreter's end is no time to free anything.
std::vector<Engine>& spareEngines(int32_t bands) {
    static auto& spare = *new std::map<int32_t, std::vector<Engine>>;
    return spare[bands];
}

/// An engine for one call.
class LentEngine {
public:
    explicit LentEngine(int32_t bands) : spare_(spareEngines(bands)) {
        if (spare_.empty()) {
            engine_.reset(krl_engine_new(bands));
            if (!engine_) throw std::bad_alloc();
        } else {
            engine_ = std::move(spare_.back());
            spare_.pop_back();
        }
    }
    ~LentEngine() { spare_.push_back(std::move(engine_)); }
    LentEngine(const LentEngine&) = delete;
    LentEngine& operator=(const LentEngine&) = delete;

    krl_engine* get() const { return engine_.get(); }

private:
    std::vector<Engine>& spare_;
    Engine engine_;
};

/// Runs `work(engine, picture, result)` without the interpreter's lock. Gives the code, the message, the
/// script's error and the entries of the result.
template <class Work>
py::tuple outcomeOf(int32_t bands, const std::optional<Array>& pixels, int32_t order, const Work& work) {
    const LentEngine engine(bands);
    std::optional<krl_picture> picture;
    if (pixels) picture = pictureOf(*pixels, order);
    krl_result* made = nullptr;
    {
        const py::gil_scoped_release unlocked;
        work(engine.get(), picture ? &*picture : nullptr, &made);
    }
    const Result result(made);
    return py::make_tuple(krl_result_code(made), krl_result_message(made), krl_result_error(made),
                          read(krl_result_value(made)));
}

py::tuple call(const char* method, const std::optional<Array>& pixels, int32_t order,
               const std::vector<const Value*>& given, int32_t bands) {
    std::vector<krl_argument> arguments;
    for (const Value* value : given) arguments.push_back({nullptr, value ? value->get() : nullptr});
    return outcomeOf(bands, pixels, order, [&](auto* engine, auto* picture, auto** result) {
        krl_call(engine, picture, method, arguments.data(), arguments.size(), result);
    });
}

py::tuple apply(const char* text, const std::optional<Array>& pixels, int32_t order, int32_t bands) {
    return outcomeOf(bands, pixels, order, [&](auto* engine, auto* picture, auto** result) {
        krl_apply(engine, picture, text, result);
    });
}

}  // namespace

void bindCalls(py::module_& module) {
    module.attr("BGRA") = int{KRL_BGRA};
    module.attr("RGBA") = int{KRL_RGBA};
    module.attr("MOST_BANDS") = KRL_MOST_BANDS;
    module.attr("OUT_OF_MEMORY") = int{KRL_OUT_OF_MEMORY};
    module.def("release", krl_release);
    module.def("code_text", krl_code_text);
    module.def("call", call, py::arg(), py::arg().noconvert(), py::arg(), py::arg(), py::arg());
    module.def("apply", apply, py::arg(), py::arg().noconvert(), py::arg(), py::arg());
}

}  // namespace krl::python
