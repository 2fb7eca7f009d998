// Operations whose rooms are not built yet: mixing and text. They keep their slots.
#include "frames/object/frame.h"

namespace zck {

HRESULT CCoZFrame2::ZFOverlay(IZFFrame *, IZFFrame *, int32_t, int32_t, double, BSTR, int64_t, int32_t) { return E_NOTIMPL; }
HRESULT CCoZFrame2::ZFPrint(BSTR, double, PrintRect *, uint32_t, BSTR, int64_t) { return E_NOTIMPL; }
HRESULT CCoZFrame2::ZFOverlayRect(IZFFrame *, IZFFrame *, PrintRect *, int32_t, double, BSTR, int64_t) { return E_NOTIMPL; }

}    // namespace zck
