// Operations whose rooms are not built yet: image files. They keep their slots.
#include "frames/factory/frame_factory.h"

namespace zck {
namespace {

template <class T>
HRESULT Refuse(T **out, HRESULT status) {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return status;
}

}    // namespace

HRESULT CCoZFFactory_I::FrameCreateReserved() { return E_NOTIMPL; }

HRESULT CCoZFFactory_I::FrameCreateFromFile(BSTR, IZFrame **_ppFrameRes, BSTR) { return Refuse(_ppFrameRes, E_NOTIMPL); }
HRESULT CCoZFFactory_I::ZFFrameCreateFromFile(BSTR, IZFFrame **_ppFrameRes, BSTR) { return Refuse(_ppFrameRes, E_NOTIMPL); }

// The loader looks for its file before it looks at a bitmap, and there is no file: whatever the bitmap, it is not found.
HRESULT CCoZFFactory_I::FrameCreateFromHbitmap(int64_t, IZFrame **_ppFrameRes, BSTR) {
    return Refuse(_ppFrameRes, kErrorFileNotFound);
}
HRESULT CCoZFFactory_I::ZFFrameCreateFromHbitmap(int64_t, IZFFrame **_ppFrameRes, BSTR) {
    return Refuse(_ppFrameRes, kErrorFileNotFound);
}

}    // namespace zck
