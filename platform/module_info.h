// Facts about the module that holds this code: the library, or a program that it is linked into.
#pragma once

#include "platform/text.h"

namespace zck {

constexpr size_t kMostModulePath = 1040;

/// The full path as the system gives it, cut to `kMostModulePath` units; empty when it is not known.
Text ModulePath();
/// "%d.%d.%d.%d" of the module's version resource, or of the build where there is none.
Text ModuleProductVersion();
Text ModuleFileVersion();

}    // namespace zck
