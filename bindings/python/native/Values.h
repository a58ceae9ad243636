#pragma once

#include <krlimage.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <memory>
#include <optional>
#include <utility>
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
    void operator()(krl_look* look) const { krl_look_free(look); }
};
using Result = std::unique_ptr<krl_result, Free>;

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

/// An array of bytes that are not set.
Array newArray(const std::vector<py::ssize_t>& shape);

/// What Python gets of a call: code, message, the script's error, and the entries of the result.
py::tuple outcomeOf(const krl_result* result);

/// An engine for one call, by its bands.
class LentEngine {
public:
    explicit LentEngine(int32_t bands);
    ~LentEngine();
    LentEngine(const LentEngine&) = delete;
    LentEngine& operator=(const LentEngine&) = delete;

    krl_engine* get() const { return engine_.get(); }

private:
    using Engine = std::unique_ptr<krl_engine, Free>;
    static std::vector<Engine>& spareOnes(int32_t bands);

    std::vector<Engine>& spare_;
    Engine engine_;
};

/// An array and the order of its channels.
using OrderedArray = std::pair<Array, int32_t>;

/// What a call works on: pixels that it rewrites, and where they come from if that is another array.
class Route {
public:
    Route(const std::optional<OrderedArray>& pixels, const std::optional<OrderedArray>& source)
        : to_(pictureOf(pixels)), from_(pictureOf(source)) {}

    /// Null for a call on no picture.
    const krl_picture* to() const { return to_ ? &*to_ : nullptr; }
    /// Null for a call in place.
    const krl_picture* from() const { return from_ ? &*from_ : nullptr; }

private:
    static std::optional<krl_picture> pictureOf(const std::optional<OrderedArray>& pixels) {
        if (!pixels) return std::nullopt;
        return python::pictureOf(pixels->first, pixels->second);
    }
    std::optional<krl_picture> to_, from_;
};

/// Runs `work(engine, result)` without the interpreter's lock. Gives its outcome.
template <class Work>
py::tuple runCall(int32_t bands, const Work& work) {
    const LentEngine engine(bands);
    krl_result* made = nullptr;
    {
        const py::gil_scoped_release unlocked;
        work(engine.get(), &made);
    }
    return outcomeOf(Result(made).get());
}

/// Numbers, names, tuples for colours and points, lists, dicts, and arrays for new pictures. A property list
/// with a key twice is a list of pairs.
py::object read(const krl_value* value);

// The parts of the module.
void bindValues(py::module_& module);
void bindPixels(py::module_& module);
void bindCalls(py::module_& module);
void bindCatalogue(py::module_& module);
void bindLooks(py::module_& module);
void bindLingo(py::module_& module);

}  // namespace krl::python
