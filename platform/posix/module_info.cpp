#include "platform/module_info.h"

#include <dlfcn.h>

#include <climits>
#include <cstdlib>

namespace zck {

Text ModulePath() {
    Dl_info info = {};
    static const char here = 0;
    if (dladdr(&here, &info) == 0 || info.dli_fname == nullptr) return Text();
    // A program may be known by the name it was called by.
    char path[PATH_MAX];
    return TextFromUtf8(realpath(info.dli_fname, path) != nullptr ? path : info.dli_fname).substr(0, kMostModulePath);
}

Text ModuleProductVersion() { return TextFromUtf8(ZCK_BUILD_VERSION); }
Text ModuleFileVersion() { return TextFromUtf8(ZCK_BUILD_VERSION); }

}    // namespace zck
