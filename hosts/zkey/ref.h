// A counted reference on an object of the library.
#pragma once

#include "zchromakey/holders.h"

namespace zkey {

template <class T>
using Ref = ZComPtr<T>;

}    // namespace zkey
