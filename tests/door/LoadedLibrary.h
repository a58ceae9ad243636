#pragma once

#include <string>

namespace krl::host::test {

/// The plug-in from a file, as hosts load it.
class LoadedLibrary {
public:
    explicit LoadedLibrary(const std::string& path);
    ~LoadedLibrary();
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    bool loaded() const { return handle_ != nullptr; }
    /// An export by name, or null.
    void* symbol(const char* name) const;
    /// By ordinal number, as a host's loader may request it; null on platforms without ordinals.
    void* ordinal(int number) const;

    template <class Function>
    Function function(const char* name) const {
        return reinterpret_cast<Function>(symbol(name));
    }

private:
    void* handle_;
};

}  // namespace krl::host::test
