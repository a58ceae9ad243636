#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Method.h"

/// Every method described once: what help, reference page, gallery, completion, bindings and generated tests
/// are made of, and the way to call a method by name. Knows no host.
namespace krl {

/// Methods that readers find under one heading: those of one folder of effects.
struct Family {
    std::string name;  ///< the folder, such as `tone`
    std::string heading;
    std::vector<const Method*> methods;  ///< in the order of their source files
};

class Catalogue {
public:
    Catalogue() = default;
    Catalogue(Catalogue&&) = default;
    Catalogue(const Catalogue&) = delete;  // families point at the entries

    /// Begins a family; methods added from here on belong to it.
    void family(const char* name);
    // Entries are made once: what calls these is compiled to be small.
    /// A method that is one effect of the engine; its parameters take the arguments in order.
    template <class... Parameters>
    [[gnu::cold]] Method& add(const char* name, Status (*effect)(ImageEngine&, Parameters...)) {
        return add(method(name, effect));
    }
    /// A method with a hand-written body, to be given with `does`.
    [[gnu::cold]] Method& add(const char* name) { return add(Method(name)); }
    [[gnu::cold]] Method& add(Method entry);

    /// Families in reading order, from the most used on.
    const std::vector<Family>& families() const { return families_; }
    /// Every method, family by family.
    std::vector<const Method*> methods() const;
    /// The method of that name, with or without its `krlImage` prefix, letter case aside; null when there
    /// is none.
    const Method* find(std::string_view name) const;

private:
    std::deque<Method> entries_;
    std::vector<Family> families_;
    size_t current_ = 0;
};

/// The catalogue of this program, made on first use and read only from then on.
const Catalogue& catalogue();

/// Adds the methods that manage an engine and its picture; whoever owns the engine carries them out.
void describeEngineMethods(Catalogue& catalogue);
/// Adds every effect of the source tree. Written by the build from the folders of effects.
void describeEveryEffect(Catalogue& catalogue);

}  // namespace krl
