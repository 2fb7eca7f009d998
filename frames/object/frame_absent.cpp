// The operation whose room is not built yet: text. It keeps its slot.
#include "frames/object/frame.h"

namespace zck {

HRESULT CCoZFrame2::ZFPrint(BSTR, double, PrintRect *, uint32_t, BSTR, int64_t) { return E_NOTIMPL; }

}    // namespace zck
