#include "frames/object/frame.h"

namespace zck {

// Whoever holds a frame reaches its factory this way.
HRESULT CCoZFrame2::CloneShell(IZFrame *_pFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat, IZFrame_I **_ppClone,
                               IZFrame_I **_ppLocal, ZF_SHELL *_pShell) {
    if (_ppClone != nullptr) *_ppClone = nullptr;
    if (_ppLocal != nullptr) *_ppLocal = nullptr;
    const auto factory = QueryFor<IZFrameShell>(m_pFactory.get());
    return factory ? factory->CloneShell(_pFrame, _eCloneType, _fccPixelFormat, _ppClone, _ppLocal, _pShell) : E_UNEXPECTED;
}

HRESULT CCoZFrame2::UnwrittenAlloc(int32_t _cbVideo, IZFrame_I **_ppFrameRes) {
    if (_ppFrameRes != nullptr) *_ppFrameRes = nullptr;
    const auto factory = QueryFor<IZFrameShell>(m_pFactory.get());
    return factory ? factory->UnwrittenAlloc(_cbVideo, _ppFrameRes) : E_UNEXPECTED;
}

}    // namespace zck
