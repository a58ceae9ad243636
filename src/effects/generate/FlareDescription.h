#pragma once

#include <vector>

#include "catalogue/Call.h"
#include "krlimage/generate.h"

namespace krl {

/// A flare's description as scripts write it: property lists of settings, each under the symbol of its kind.
class FlareDescription {
public:
    /// Interns the symbols of all kinds. The call must outlive this object.
    FlareDescription(const Call& call, const ValueHandle& list);

    int32_t count() const { return call_.countElements(list_); }
    /// Reads element `index`, from 1.
    Outcome read(int32_t index, FlareElement& element) const;

private:
    const Call& call_;
    ValueHandle list_;
    std::vector<SymbolId> kinds_;
};

}  // namespace krl
