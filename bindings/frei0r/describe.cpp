#include <cstdio>
#include <fstream>
#include <string>

#include "common/Roles.h"
#include "frei0r/Descriptions.h"

/// Writes the descriptions of every module for editors of films: into `kdenlive/effects`,
/// `kdenlive/transitions` and `mlt-7/frei0r` of the folder given.
namespace {

using krl::bindings::Role;

bool isWritten(const std::string& file, const std::string& text) {
    std::ofstream out(file, std::ios::binary);
    out << text;
    if (out.flush()) return true;
    std::fprintf(stderr, "cannot write %s\n", file.c_str());
    return false;
}

bool describe(const std::string& folder, const krl_method_info& method, Role role) {
    const char* const type = role == Role::Source  ? "producer"
                             : role == Role::Mixer ? "transition"
                                                   : "filter";
    const std::string forMlt = folder + "/mlt-7/frei0r/" + type + "_frei0r.krl_" + method.name + ".yml";
    if (!isWritten(forMlt, krl::frei0r::mltDescription(method, type))) return false;
    if (role == Role::Source) return true;
    const char* const tag = role == Role::Mixer ? "transition" : "effect";
    return isWritten(folder + "/kdenlive/" + tag + "s/frei0r_krl_" + method.name + ".xml",
                     krl::frei0r::kdenliveDescription(method, tag));
}

}  // namespace

int main(int count, char** words) {
    if (count != 2) {
        std::fprintf(stderr,
                     "expected a folder with kdenlive/effects, kdenlive/transitions and mlt-7/frei0r\n");
        return 2;
    }
    bool isGood = true;
    krl::bindings::forEachWithRole([&](const krl_method_info& method, Role role) {
        isGood = describe(words[1], method, role) && isGood;
    });
    return isGood ? 0 : 1;
}
