#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/Handles.h"
#include "common/Roles.h"
#include "frei0r/Parameters.h"

namespace krl::frei0r {

/// A method with all that hosts ask about it. Read only once it is made.
struct Effect {
    explicit Effect(const krl_method_info& described);

    const krl_method_info& method;
    bindings::Role role;
    std::string name;  ///< as in messages
    std::vector<Parameter> parameters;
};

/// One use of an effect on frames of one size, with an engine of its own: instances share nothing that
/// changes.
class Instance {
public:
    /// Throws `std::bad_alloc`.
    Instance(const Effect& effect, int32_t width, int32_t height);

    /// Takes a parameter from where a host keeps it. A bad one is reported once on standard error; numbers
    /// then count as the nearest that is allowed, and others let frames pass unchanged.
    void set(size_t parameter, const void* from);
    void get(size_t parameter, void* to) const;

    /// Makes `out` of the frames that the effect's role takes; the others may be null.
    void update(const uint32_t* first, const uint32_t* second, uint32_t* out);

private:
    /// An argument's value and the parameters that it comes from.
    struct Argument {
        bindings::Value value;  ///< null for a picture, and for what is no value
        bool isGood = true;
    };

    void refresh(size_t argument);
    bindings::Value valueFor(size_t argument, std::string& problem) const;
    void rewrite(const uint32_t* first, const uint32_t* second, uint32_t* out);
    void makePicture();
    /// The frame that a method rewrites, and where it leaves the outcome; null for a method that rewrites
    /// none.
    struct Loaded {
        const krl_picture *from = nullptr, *to = nullptr;
    };
    bool call(const Loaded& loaded, const krl_picture& changed, const krl_picture& second,
              bindings::Result& result);
    bool isGood() const;
    void complain(const std::string& problem);
    Scale scaleOf(size_t argument) const;
    size_t frameBytes() const { return size_t(width_) * size_t(height_) * 4; }
    void copy(const void* from, uint32_t* to) const;

    const Effect& effect_;
    int32_t width_, height_;
    bindings::Engine engine_;
    std::vector<Setting> settings_, defaults_;  ///< of each parameter
    std::vector<Argument> arguments_;
    std::vector<krl_argument> given_;  ///< of the call
    bindings::Result made_;            ///< of a source, until a parameter changes
    std::string lastComplaint_;
};

}  // namespace krl::frei0r
