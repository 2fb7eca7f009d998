// Libraries of the system that are loaded when they are first needed, so that hosts that never need them do not load them.
#pragma once

namespace zck {

/// Loads a library, which then stays for good: some keep process-wide state that must not come and go. Null when the system
/// does not have it. Not from the library's entry.
void *LibraryLoad(const char *name) noexcept;

/// A function of a loaded library, null when it is missing.
void *LibrarySymbol(void *library, const char *name) noexcept;

/// Sets a pointer to a function of a library. False, and null, when there is no library or no such function.
template <class Function>
bool LibraryBind(void *library, const char *name, Function *&function) noexcept {
    function = library != nullptr ? reinterpret_cast<Function *>(LibrarySymbol(library, name)) : nullptr;
    return function != nullptr;
}

}    // namespace zck
