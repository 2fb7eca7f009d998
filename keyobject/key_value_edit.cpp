// Edits of the key that need no look at the picture: adjustment, steps, raw key.
#include "keyobject/key_adjust.h"
#include "keyobject/key_value.h"

namespace zck {

HRESULT CCoZKeyValue::KeyAdjustSet(eCK_Adjust _eAdjust, double _dblValue, IUnknown **_ppZFrameRes) {
    return Edit(_ppZFrameRes, [&]() -> HRESULT {
        if (!m_frames.Now().keying) return kVfwEWrongState;
        KeyStep step = StepNow();
        m_history.Save(step);
        AdjustRemove(step.key, step.adjust);
        if (double *field = AdjustField(step.adjust, _eAdjust)) *field = _dblValue;
        AdjustApply(step.key, step.adjust);
        StepPut(step);
        return Render(_ppZFrameRes);
    });
}

HRESULT CCoZKeyValue::KeyAdjustGet(eCK_Adjust _eAdjust, double *_pdblValue) {
    if (_pdblValue == nullptr) return E_POINTER;
    KeyStep step = StepNow();
    if (const double *field = AdjustField(step.adjust, _eAdjust)) *_pdblValue = *field;
    return S_OK;
}

HRESULT CCoZKeyValue::KeyStepBack(int32_t, IUnknown **_ppZFrameRes) {
    return Edit(_ppZFrameRes, [&]() -> HRESULT {
        if (const KeyStep *step = m_history.Back()) StepPut(*step);
        return Render(_ppZFrameRes);
    });
}

HRESULT CCoZKeyValue::KeyStepFwd(int32_t, IUnknown **_ppZFrameRes) {
    return Edit(_ppZFrameRes, [&]() -> HRESULT {
        const KeyStep *step = m_history.Forward();
        if (step == nullptr) return E_UNEXPECTED;
        StepPut(*step);
        return Render(_ppZFrameRes);
    });
}

HRESULT CCoZKeyValue::KeyReset(IUnknown **_ppZFrameRes) {
    return Edit(_ppZFrameRes, [&]() -> HRESULT {
        KeyStep step = StepNow();
        m_history.Save(step);
        step.addRanges.count = 0;
        step.excludeRanges.count = 0;
        step.adjust = AdjustDefaults();
        step.key = {};
        StepPut(step);
        return Render(_ppZFrameRes);
    });
}

HRESULT CCoZKeyValue::KeyRawSet(CHROMA_KEY_RAW *_pvmKey, CK_ADJUST *_pKeyAdjust) {
    if (_pvmKey == nullptr) return E_POINTER;
    return Guarded([&]() -> HRESULT {
        const std::lock_guard guard(m_editLock);
        KeyStep step = StepNow();
        m_history.Save(step);
        step.key = *_pvmKey;
        if (_pKeyAdjust != nullptr) step.adjust = *_pKeyAdjust;
        StepLoadRanges(step);
        StepRebuild(step);
        StepPut(step);
        return S_OK;
    });
}

HRESULT CCoZKeyValue::KeyRawGet(CHROMA_KEY_RAW *_pvmKey, CK_ADJUST *_pKeyAdjust) {
    if (_pvmKey == nullptr) return E_POINTER;
    const KeyStep step = StepNow();
    *_pvmKey = step.key;
    if (_pKeyAdjust != nullptr) *_pKeyAdjust = step.adjust;
    return S_OK;
}

}    // namespace zck
