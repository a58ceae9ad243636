#pragma once

#include <filesystem>
#include <memory>

#include "host/Door.h"

namespace krl::player {

/// The exports of a plug-in, and the library handle that keeps them callable.
struct PlugInLibrary {
    host::GetClassFormFunction getClassForm = nullptr;
    host::GetClassInfoFunction getClassInfo = nullptr;
    host::GetInterfaceFunction getInterface = nullptr;
    host::CanUnloadNowFunction canUnloadNow = nullptr;
    std::shared_ptr<void> file;  ///< unloads with the last copy
};

/// The plug-in linked into this program.
PlugInLibrary builtInPlugIn();
/// A plug-in from a file; throws `HostError` if it cannot be loaded or is not a plug-in.
PlugInLibrary loadPlugIn(const std::filesystem::path& file);

}  // namespace krl::player
