// Properties that every object answers without storing them.
#pragma once

#include "platform/text.h"

namespace zck {

/// "dll-version" and "dll-file-version" as four numbers, "dll-path", and "dll-date" as "May  7 2015 11:53:49". Without regard
/// to case. False for any other name.
bool ComputedProperty(TextView name, Text &value);

}    // namespace zck
