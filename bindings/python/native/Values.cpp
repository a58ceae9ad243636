#include "Values.h"

#include <new>

namespace krl::python {

namespace {

constexpr py::ssize_t kPixelBytes = 4;

/// `krl_copy`, for lists that take their entries over.
krl_value* copyOf(const Value& value) { return krl_copy(value.get()); }

void require(krl_code code) {
    if (code == KRL_OUT_OF_MEMORY) throw std::bad_alloc();
    if (code != KRL_OK) throw py::value_error("a list is nested too deeply");
}

void adopt(std::vector<py::object>& memory, const Value& item) {
    memory.insert(memory.end(), item.memory().begin(), item.memory().end());
}

Value listOf(const std::vector<const Value*>& items) {
    std::unique_ptr<krl_value, Free> list(krl_list());
    std::vector<py::object> memory;
    for (const Value* item : items) {
        require(krl_list_add(list.get(), copyOf(*item)));
        adopt(memory, *item);
    }
    return Value(list.release(), std::move(memory));
}

Value propertyListOf(const std::vector<std::pair<const Value*, const Value*>>& entries) {
    std::unique_ptr<krl_value, Free> list(krl_property_list());
    std::vector<py::object> memory;
    for (const auto& [key, item] : entries) {
        require(krl_property_list_add(list.get(), copyOf(*key), copyOf(*item)));
        adopt(memory, *item);
    }
    return Value(list.release(), std::move(memory));
}

/// The value that a text writes for an argument; `KrlError` is for the package to make.
Value argumentOf(const char* method, const char* argument, const char* text, int32_t width, int32_t height) {
    char problem[500];
    krl_value* const value =
        krl_parse_argument(method, argument, text, width, height, problem, sizeof problem);
    if (!value) throw py::value_error(problem);
    return Value(value);
}

std::string writtenOf(const Value& value) {
    std::string text(krl_write(value.get(), nullptr, 0), ' ');
    krl_write(value.get(), text.data(), text.size() + 1);
    return text;
}

Value pictureValueOf(const Array& array, int32_t order) {
    const krl_picture picture = pictureOf(array, order);
    return Value(krl_picture_value(&picture), {array});
}

/// The pixels of a value without a copy: the array keeps them alive.
py::object arrayOf(const krl_value* value) {
    krl_picture picture = {sizeof picture, nullptr, 0, 0, 0, 0};
    krl_get_picture(value, &picture);
    krl_value* const kept = krl_copy(value);
    if (!kept) throw std::bad_alloc();
    const py::capsule owner(kept, [](void* held) { krl_value_free(static_cast<krl_value*>(held)); });
    return Array({py::ssize_t{picture.height}, py::ssize_t{picture.width}, kPixelBytes},
                 {py::ssize_t{picture.row_bytes}, kPixelBytes, py::ssize_t{1}},
                 static_cast<uint8_t*>(picture.pixels), owner);
}

py::object entriesOf(const krl_value* list) {
    py::list pairs;
    py::dict entries;
    for (size_t i = 0; i < krl_count(list); ++i) {
        const py::object key = read(krl_key(list, i)), item = read(krl_item(list, i));
        pairs.append(py::make_tuple(key, item));
        entries[key] = item;
    }
    if (entries.size() < pairs.size()) return pairs;
    return entries;
}

py::object itemsOf(const krl_value* list) {
    py::list items;
    for (size_t i = 0; i < krl_count(list); ++i) items.append(read(krl_item(list, i)));
    return items;
}

}  // namespace

Value::Value(krl_value* value, std::vector<py::object> memory) : value_(value), memory_(std::move(memory)) {
    if (!value) throw std::bad_alloc();
}

bool isDirect(const Array& array) {
    if (array.ndim() != 3 || array.shape(2) != kPixelBytes || array.strides(2) != 1) return false;
    const py::ssize_t height = array.shape(0), width = array.shape(1);
    return (width == 1 || array.strides(1) == kPixelBytes) &&
           (height == 1 || array.strides(0) >= width * kPixelBytes);
}

krl_picture pictureOf(const Array& array, int32_t order) {
    if (!isDirect(array)) throw py::value_error("the rows of the array are no rows of a picture");
    const auto height = static_cast<int32_t>(array.shape(0)), width = static_cast<int32_t>(array.shape(1));
    const auto rowBytes = height == 1 ? ptrdiff_t{width} * kPixelBytes : ptrdiff_t{array.strides(0)};
    return {sizeof(krl_picture), const_cast<uint8_t*>(array.data()), width, height, rowBytes, order};
}

py::object read(const krl_value* value) {
    int32_t whole = 0, y = 0;
    double real = 0;
    uint8_t red = 0, green = 0, blue = 0;
    switch (krl_kind(value)) {
        case KRL_KIND_INTEGER:
            krl_get_integer(value, &whole);
            return py::int_(whole);
        case KRL_KIND_REAL:
            krl_get_real(value, &real);
            return py::float_(real);
        case KRL_KIND_SYMBOL:
        case KRL_KIND_TEXT:
        case KRL_KIND_PICTURE_NAME:
            return py::str(krl_get_text(value));
        case KRL_KIND_COLOUR:
            krl_get_colour(value, &red, &green, &blue);
            return py::make_tuple(red, green, blue);
        case KRL_KIND_POINT:
            krl_get_point(value, &whole, &y);
            return py::make_tuple(whole, y);
        case KRL_KIND_LIST:
            return itemsOf(value);
        case KRL_KIND_PROPERTY_LIST:
            return entriesOf(value);
        case KRL_KIND_PICTURE:
            return arrayOf(value);
        default:
            return py::none();
    }
}

void bindValues(py::module_& module) {
    py::class_<Value>(module, "Value");
    module.def("integer", [](int32_t number) { return Value(krl_integer(number)); });
    module.def("real", [](double number) { return Value(krl_real(number)); });
    module.def("symbol", [](const char* name) { return Value(krl_symbol(name)); });
    module.def("colour", [](uint8_t r, uint8_t g, uint8_t b) { return Value(krl_colour(r, g, b)); });
    module.def("point", [](int32_t x, int32_t y) { return Value(krl_point(x, y)); });
    module.def("list_of", listOf);
    module.def("property_list_of", propertyListOf);
    module.def("write", writtenOf);
    module.def("argument", argumentOf);
    module.def("picture", pictureValueOf, py::arg().noconvert(), py::arg());
    module.def("is_direct", isDirect, py::arg().noconvert());
}

}  // namespace krl::python
