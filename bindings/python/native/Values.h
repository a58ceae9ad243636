#pragma once

#include <krlimage.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <memory>
#include <vector>

/// Values of the C interface as Python has them.
namespace krl::python {

namespace py = pybind11;

using Array = py::array_t<uint8_t>;

/// Frees what the C interface gives out.
struct Free {
    void operator()(krl_value* value) const { krl_value_free(value); }
    void operator()(krl_result* result) const { krl_result_free(result); }
    void operator()(krl_engine* engine) const { krl_engine_free(engine); }
};

/// A value, and the arrays whose memory its pictures use.
class Value {
public:
    /// Throws `std::bad_alloc` for NULL.
    explicit Value(krl_value* value, std::vector<py::object> memory = {});
    Value(Value&&) = default;

    const krl_value* get() const { return value_.get(); }
    const std::vector<py::object>& memory() const { return memory_; }

private:
    std::unique_ptr<krl_value, Free> value_;
    std::vector<py::object> memory_;
};

/// Whether the C interface takes the array as it is: rows downward of four adjacent bytes for each pixel.
bool isDirect(const Array& array);

/// The picture that an array is. Throws `py::value_error` unless `isDirect`.
krl_picture pictureOf(const Array& array, int32_t order);

/// Numbers, names, tuples for colours and points, lists, dicts, and arrays for new pictures. A property list
/// with a key twice is a list of pairs.
py::object read(const krl_value* value);

// The parts of the module.
void bindValues(py::module_& module);
void bindPixels(py::module_& module);
void bindCalls(py::module_& module);
void bindCatalogue(py::module_& module);
void bindLingo(py::module_& module);

}  // namespace krl::python
