#include <map>
#include <new>
#include <string>

#include "Values.h"

namespace krl::python {

/// Engines that serve no call. An engine takes milliseconds to make. The interpreter's lock guards the list;
/// it is never freed, since the interpreter's end is no time to free anything.
std::vector<LentEngine::Engine>& LentEngine::spareOnes(int32_t bands) {
    static auto& spare = *new std::map<int32_t, std::vector<Engine>>;
    return spare[bands];
}

LentEngine::LentEngine(int32_t bands) : spare_(spareOnes(bands)) {
    if (spare_.empty()) {
        engine_.reset(krl_engine_new(bands));
        if (!engine_) throw std::bad_alloc();
    } else {
        engine_ = std::move(spare_.back());
        spare_.pop_back();
    }
}

LentEngine::~LentEngine() { spare_.push_back(std::move(engine_)); }

py::tuple outcomeOf(const krl_result* result) {
    return py::make_tuple(krl_result_code(result), krl_result_message(result), krl_result_error(result),
                          read(krl_result_value(result)));
}

namespace {

using NamedValue = std::pair<std::string, const Value*>;

/// Calls a method with arguments in order, and after them some by name.
py::tuple call(const char* method, const std::optional<OrderedArray>& pixels,
               const std::optional<OrderedArray>& source, const std::vector<const Value*>& given,
               const std::vector<NamedValue>& named, int32_t bands) {
    std::vector<krl_argument> arguments;
    for (const Value* value : given) arguments.push_back({nullptr, value ? value->get() : nullptr});
    for (const auto& [name, value] : named) arguments.push_back({name.c_str(), value->get()});
    const Route route(pixels, source);
    return runCall(bands, [&](auto* engine, auto** result) {
        if (route.from())
            krl_call_into(engine, route.from(), route.to(), method, arguments.data(), arguments.size(),
                          result);
        else
            krl_call(engine, route.to(), method, arguments.data(), arguments.size(), result);
    });
}

py::tuple apply(const char* text, const OrderedArray& pixels, const std::optional<OrderedArray>& source,
                int32_t bands) {
    const Route route(pixels, source);
    return runCall(bands, [&](auto* engine, auto** result) {
        if (route.from())
            krl_apply_into(engine, route.from(), route.to(), text, result);
        else
            krl_apply(engine, route.to(), text, result);
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
    module.def("call", call, py::arg(), py::arg().noconvert(), py::arg().noconvert(), py::arg(), py::arg(),
               py::arg());
    module.def("apply", apply, py::arg(), py::arg().noconvert(), py::arg().noconvert(), py::arg());
}

}  // namespace krl::python
