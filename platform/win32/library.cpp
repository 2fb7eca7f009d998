#include "platform/library.h"

#include "zchromakey/com.h"

namespace zck {

void *LibraryLoad(const char *name) noexcept {
    return reinterpret_cast<void *>(LoadLibraryExA(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
}

void *LibrarySymbol(void *library, const char *name) noexcept {
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(library), name));
}

}    // namespace zck
