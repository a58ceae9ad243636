#include <map>
#include <string>

#include "Values.h"

/// Looks: chains of calls as texts.
namespace krl::python {

namespace {

using Look = std::unique_ptr<krl_look, Free>;
using Settings = std::map<std::string, std::string>;

/// Calls `work(&result)`; a failure becomes a ValueError with the result's words.
template <class Work>
void require(const Work& work) {
    krl_result* made = nullptr;
    const krl_code code = work(&made);
    const Result result(made);
    if (code == KRL_OUT_OF_MEMORY) throw std::bad_alloc();
    if (code != KRL_OK) throw py::value_error(krl_result_message(made));
}

Look lookOf(const std::string& text) {
    krl_look* look = nullptr;
    require([&](krl_result** result) { return krl_look_read(text.c_str(), &look, result); });
    return Look(look);
}

std::string textOf(const krl_look* look) {
    std::string text(krl_look_write(look, nullptr, 0), ' ');
    krl_look_write(look, text.data(), text.size() + 1);
    return text;
}

py::tuple parametersOf(const krl_look* look) {
    py::list made;
    for (size_t i = 0; i < krl_look_parameter_count(look); ++i) {
        krl_parameter_info info = {};
        info.size = sizeof info;
        krl_look_parameter(look, i, &info);
        made.append(py::make_tuple(info.name, info.value, info.from, info.to, info.meaning));
    }
    return py::tuple(made);
}

/// Title, description, calls, parameters and names of pictures.
py::tuple lookFacts(const std::string& text) {
    const Look look = lookOf(text);
    py::list calls, pictures;
    for (size_t i = 0; i < krl_look_call_count(look.get()); ++i) calls.append(krl_look_call(look.get(), i));
    for (size_t i = 0; i < krl_look_picture_count(look.get()); ++i)
        pictures.append(krl_look_picture_name(look.get(), i));
    return py::make_tuple(krl_look_title(look.get()), krl_look_description(look.get()), py::tuple(calls),
                          parametersOf(look.get()), py::tuple(pictures));
}

/// Name, value, the ends of the range and the meaning, each a text.
using Parameter = std::tuple<std::string, std::string, std::string, std::string, std::string>;

/// The text of a look.
std::string lookText(const std::string& title, const std::string& description,
                     const std::vector<Parameter>& parameters, const std::vector<std::string>& calls) {
    const Look look(krl_look_new());
    if (!look) throw std::bad_alloc();
    const auto textOrNull = [](const std::string& text) { return text.empty() ? nullptr : text.c_str(); };
    require([&](krl_result** result) { return krl_look_set_title(look.get(), title.c_str(), result); });
    if (!description.empty())
        require([&](krl_result** result) {
            return krl_look_set_description(look.get(), description.c_str(), result);
        });
    for (const auto& [name, value, from, to, meaning] : parameters)
        require([&, &name = name, &value = value, &from = from, &to = to,
                 &meaning = meaning](krl_result** result) {
            return krl_look_add_parameter(look.get(), name.c_str(), value.c_str(), textOrNull(from),
                                          textOrNull(to), textOrNull(meaning), result);
        });
    for (const std::string& call : calls)
        require([&](krl_result** result) { return krl_look_add_call(look.get(), call.c_str(), result); });
    return textOf(look.get());
}

/// The look with other values of its parameters.
Look settledLook(const std::string& text, const Settings& settings) {
    Look look = lookOf(text);
    for (const auto& [name, value] : settings)
        require([&, &name = name, &value = value](krl_result** result) {
            return krl_look_set(look.get(), name.c_str(), value.c_str(), result);
        });
    return look;
}

/// Applies a look with other values of its parameters to a picture. Gives what `call` does.
py::tuple lookApply(const std::string& text, const Settings& settings,
                    const std::map<std::string, OrderedArray>& pictures, const OrderedArray& pixels,
                    const std::optional<OrderedArray>& source, int32_t bands) {
    const Look look = settledLook(text, settings);
    for (const auto& [name, picture] : pictures) {
        const krl_picture described = pictureOf(picture.first, picture.second);
        if (const krl_code code = krl_look_set_picture(look.get(), name.c_str(), &described); code != KRL_OK)
            throw py::value_error(name + ": " + krl_code_text(code));
    }
    const Route route(pixels, source);
    return runCall(bands, [&](auto* engine, auto** result) {
        if (route.from())
            krl_look_apply_into(engine, look.get(), route.from(), route.to(), result);
        else
            krl_look_apply(engine, look.get(), route.to(), result);
    });
}

/// The texts of the looks that come with the library, by name.
py::dict shippedLooks() {
    py::dict made;
    for (size_t i = 0; i < krl_shipped_look_count(); ++i)
        made[krl_shipped_look_name(i)] = krl_shipped_look_text(i);
    return made;
}

}  // namespace

void bindLooks(py::module_& module) {
    module.def("look_facts", lookFacts);
    module.def("look_text", lookText);
    module.def("look_check",
               [](const std::string& text, const Settings& settings) { settledLook(text, settings); });
    module.def("look_apply", lookApply);
    module.def("shipped_looks", shippedLooks);
}

}  // namespace krl::python
