#include "platform/library.h"

#include <dlfcn.h>

namespace zck {

void *LibraryLoad(const char *name) noexcept { return dlopen(name, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE); }

void *LibrarySymbol(void *library, const char *name) noexcept { return dlsym(library, name); }

}    // namespace zck
