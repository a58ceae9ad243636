#include "Values.h"

/// The C interface for the package's Python, which has the rest.
PYBIND11_MODULE(_native, module) {
    krl::python::bindValues(module);
    krl::python::bindPixels(module);
    krl::python::bindCalls(module);
    krl::python::bindCatalogue(module);
    krl::python::bindLooks(module);
    krl::python::bindLingo(module);
}
