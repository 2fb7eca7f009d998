// `ComPtr`: the counted reference, which hosts have as `ZComPtr`.
#pragma once

#include "zchromakey/holders.h"

namespace zck {

template <class T>
using ComPtr = ZComPtr<T>;

/// The interface `T` of an object; empty when the object is null or does not have it.
template <class T>
ComPtr<T> QueryFor(IUnknown *object) noexcept {
    return ZQueryFor<T>(object);
}

}    // namespace zck
