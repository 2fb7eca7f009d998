// Operations that keep their slots.
#include "frames/factory/frame_factory.h"

namespace zck {
namespace {

// The loader looks for its file before it looks at a bitmap, and there is no file: whatever the bitmap, it is not found.
template <class T>
HRESULT RefuseBitmap(T **out) {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return kErrorFileNotFound;
}

}    // namespace

HRESULT CCoZFFactory_I::FrameCreateReserved() { return E_NOTIMPL; }

HRESULT CCoZFFactory_I::FrameCreateFromHbitmap(int64_t, IZFrame **_ppFrameRes, BSTR) { return RefuseBitmap(_ppFrameRes); }
HRESULT CCoZFFactory_I::ZFFrameCreateFromHbitmap(int64_t, IZFFrame **_ppFrameRes, BSTR) { return RefuseBitmap(_ppFrameRes); }

}    // namespace zck
