#include "Values.h"

namespace krl::python {

namespace {

const char* kindName(int32_t kind) {
    switch (kind) {
        case KRL_KIND_INTEGER:
            return "integer";
        case KRL_KIND_REAL:
            return "real";
        case KRL_KIND_SYMBOL:
            return "symbol";
        case KRL_KIND_COLOUR:
            return "colour";
        case KRL_KIND_POINT:
            return "point";
        case KRL_KIND_COLOUR_LIST:
            return "colours";
        case KRL_KIND_PICTURE:
            return "picture";
        default:
            return "tree";
    }
}

/// `work(entry)` of each entry, as a tuple.
template <class Entry, class Work>
py::tuple tupleOf(const Entry* const* entries, size_t count, const Work& work) {
    py::tuple made(count);
    for (size_t i = 0; i < count; ++i) made[i] = work(*entries[i]);
    return made;
}

/// Whether an argument takes a percentage of the picture's shorter side.
bool isLength(const krl_method_info& method, const krl_argument_info& argument) {
    const std::unique_ptr<krl_value, Free> value(
        krl_parse_argument(method.name, argument.name, "1%", 100, 100, nullptr, 0));
    return value && (argument.kind == KRL_KIND_INTEGER || argument.kind == KRL_KIND_REAL);
}

py::dict argumentOf(const krl_method_info& method, size_t index) {
    const krl_argument_info& info = *method.arguments[index];
    py::tuple choices(info.choice_count);
    for (size_t i = 0; i < info.choice_count; ++i) choices[i] = py::str(info.choices[i]);
    const std::unique_ptr<krl_value, Free> example(krl_example(method.name, index, 960, 640));
    py::dict made;
    made["name"] = info.name;
    made["meaning"] = info.meaning;
    made["kind"] = kindName(info.kind);
    made["notation"] = info.example;
    made["example"] = read(example.get());
    made["range"] = py::make_tuple(info.from, info.to);
    made["limits"] = py::make_tuple(info.least, info.most);
    made["neutral"] = info.neutral;
    made["choices"] = choices;
    made["is_length"] = isLength(method, info);
    return made;
}

py::dict methodOf(const krl_method_info& info) {
    py::tuple arguments(info.argument_count);
    for (size_t i = 0; i < info.argument_count; ++i) arguments[i] = argumentOf(info, i);
    const auto entryOf = [](const krl_entry_info& entry) { return py::make_tuple(entry.key, entry.meaning); };
    py::dict made;
    made["name"] = info.name;
    made["script_name"] = info.script_name;
    made["summary"] = info.summary;
    made["flags"] = info.flags;
    made["arguments"] = arguments;
    made["results"] = tupleOf(info.entries, info.entry_count, entryOf);
    return made;
}

/// Families as (name, heading, methods).
py::tuple catalogue() {
    const krl_catalogue_info* all = krl_catalogue();
    if (!all) throw std::bad_alloc();
    return tupleOf(all->families, all->family_count, [](const krl_family_info& family) {
        return py::make_tuple(family.name, family.heading,
                              tupleOf(family.methods, family.method_count, methodOf));
    });
}

}  // namespace

void bindCatalogue(py::module_& module) {
    module.attr("REWRITES_PICTURE") = int{KRL_REWRITES_PICTURE};
    module.attr("MAKES_PICTURE") = int{KRL_MAKES_PICTURE};
    module.attr("MAKES_PICTURE_LIST") = int{KRL_MAKES_PICTURE_LIST};
    module.attr("DEPENDS_ON_BANDS") = int{KRL_DEPENDS_ON_BANDS};
    module.attr("MANAGES_ENGINE") = int{KRL_MANAGES_ENGINE};
    module.attr("INERT") = int{KRL_INERT};
    module.attr("CHANGES_SECOND_PICTURE") = int{KRL_CHANGES_SECOND_PICTURE};
    module.def("catalogue", catalogue);
}

}  // namespace krl::python
