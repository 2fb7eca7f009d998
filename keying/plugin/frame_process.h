// `IZFProcess`: the private way to run a frame through an object, and the template that leads it to `OnMediaReceive`.
#pragma once

#include "frames/views/f_frame.h"
#include "platform/com_ptr.h"
#include "zchromakey/frame.h"

/// Runs a frame through the object. Private to hosts of this family.
struct IZFProcess : IUnknown {
    /// The result frame goes to `_ppFrameRes` with a reference added. When the object gives none, the input frame itself is
    /// handed out and the status is `S_FALSE`. `_bsProps` is ignored. `E_NOINTERFACE` for an object that is no frame.
    virtual HRESULT Z_STDCALL FrameProcess(IUnknown *_pFrame, IUnknown **_ppFrameRes, BSTR _bsProps) = 0;
};
Z_INTERFACE_ID(IZFProcess, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x41);

namespace zck {

/// Implements `IZFProcess` of `T` over `T`'s own `OnMediaReceive`.
template <class T>
class IZFProcessRedir : public IZFProcess {
public:
    HRESULT Z_STDCALL FrameProcess(IUnknown *_pFrame, IUnknown **_ppFrameRes, BSTR) override {
        if (_pFrame == nullptr || _ppFrameRes == nullptr) return E_INVALIDARG;
        if (!QueryFor<IZFFrame>(_pFrame)) return E_NOINTERFACE;
        const ComPtr<IZFrame> frame = QueryFor<IZFrame>(_pFrame);
        if (!frame) return E_NOINTERFACE;
        ComPtr<IZFrame> result;
        const HRESULT hr = static_cast<T *>(this)->OnMediaReceive(0, nullptr, frame.get(), result.Put());
        if (FAILED(hr)) return hr;
        if (result) {
            *_ppFrameRes = result.Detach();
            return hr;
        }
        _pFrame->AddRef();
        *_ppFrameRes = _pFrame;
        return S_FALSE;
    }
};

}    // namespace zck

template <class T>
struct ZIidHolder<zck::IZFProcessRedir<T>> {
    static const IID &Get() { return IID_IZFProcess; }
};
