// `CCoZKeyValue`: the key object.
#pragma once

#include <mutex>

#include "keyobject/key_frames.h"
#include "keyobject/key_step.h"
#include "keyobject/working_image.h"
#include "platform/object.h"
#include "props/persist/persist_impl.h"
#include "props/store/props_impl.h"
#include "zchromakey/frames.h"
#include "zchromakey/key.h"

namespace zck {

/// The operator's side of a key. Free-threaded and aggregatable. Its properties start empty: the keyer that makes it copies its
/// own. Its configuration is an empty element, and loading one changes nothing: a key is kept by the keyer.
///
/// Locks: every edit holds the edit lock from its start to its end, preview included, so that two edits run one after the
/// other. Nothing else waits for it: readers see the step before or after an edit, which works on a copy and puts it in place
/// under the step lock. Of the step lock and the frame lock none is held inside the other, nor while a frame is called. A
/// frame may call back, also with an edit of its own.
class CCoZKeyValue : public CoObject<IZKey, IZPropsImpl<CCoZKeyValue>, IZPersistImpl<CCoZKeyValue, XMLParse::XMLNodePtr>> {
public:
    // IZKey
    HRESULT Z_STDCALL KeyFrameSet(IUnknown *_pZFrameKeyingOrNull, IUnknown *_pZFrameBGOrNull) override;
    HRESULT Z_STDCALL KeyFrameGet(IUnknown **_ppZFrameRes, IUnknown **_ppZFrameBG) override;
    HRESULT Z_STDCALL KeyDetect(BSTR _bsProps, IUnknown **_ppZFrameRes) override;
    HRESULT Z_STDCALL KeyAddPoint(int32_t _nXPosPixels, int32_t _nYPosPixels, BSTR _bsProps, IUnknown **_ppZFrameRes) override;
    HRESULT Z_STDCALL KeyExcludePoint(int32_t _nXPosPixels, int32_t _nYPosPixels, BSTR _bsProps,
                                      IUnknown **_ppZFrameRes) override;
    HRESULT Z_STDCALL KeyAddRect(int32_t _nX1PosPixels, int32_t _nY1PosPixels, int32_t _nX2PosPixels, int32_t _nY2PosPixels,
                                 BSTR _bsProps, IUnknown **_ppZFrameRes) override;
    HRESULT Z_STDCALL KeyAdjustSet(eCK_Adjust _eAdjust, double _dblValue, IUnknown **_ppZFrameRes) override;
    HRESULT Z_STDCALL KeyAdjustGet(eCK_Adjust _eAdjust, double *_pdblValue) override;
    HRESULT Z_STDCALL KeyStepBack(int32_t _nSteps, IUnknown **_ppZFrameRes) override;
    HRESULT Z_STDCALL KeyStepFwd(int32_t _nSteps, IUnknown **_ppZFrameRes) override;
    HRESULT Z_STDCALL KeyReset(IUnknown **_ppZFrameRes) override;
    HRESULT Z_STDCALL KeyRawSet(CHROMA_KEY_RAW *_pvmKey, CK_ADJUST *_pKeyAdjust) override;
    HRESULT Z_STDCALL KeyRawGet(CHROMA_KEY_RAW *_pvmKey, CK_ADJUST *_pKeyAdjust) override;

    // IZPersistImpl
    HRESULT PersistTransfer(Transfer direction, TextView object, const XMLParse::XMLNodePtr &root, TextView path,
                            const XMLParse::XMLNodePtr &param);
    static const CLSID &PersistClassId();

protected:
    void *InterfaceFind(REFIID riid) noexcept override { return PersistViewFind(riid); }

private:
    KeyStep StepNow() const;
    void StepPut(const KeyStep &step);
    /// The preview of the present step, as an object for a caller.
    HRESULT Render(IUnknown **out);
    /// The picture of the blocks that were painted into the working image.
    HRESULT ShowBlocks(IUnknown **out);
    /// A pick at a place of the picture, for one of the sets.
    HRESULT TakePoint(KeyRangeSet KeyStep::*target, int32_t x, int32_t y, BSTR text, IUnknown **out);
    /// Runs `edit` with the edit lock held; `out`, which must be there, is cleared first.
    template <class Body>
    HRESULT Edit(IUnknown **out, Body edit) noexcept;

    CriticalSection m_editLock;
    // Guarded by the edit lock.
    KeyHistory m_history;
    WorkingImage m_work;
    ComPtr<IZFrames> m_factory;    // of block pictures; made with the first
    mutable CriticalSection m_stepLock;
    KeyStep m_step;    // guarded by the step lock
    KeyFrames m_frames;
};

template <class Body>
HRESULT CCoZKeyValue::Edit(IUnknown **out, Body edit) noexcept {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return Guarded([&]() -> HRESULT {
        const std::lock_guard guard(m_editLock);
        return edit();
    });
}

}    // namespace zck
