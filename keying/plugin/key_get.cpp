// `KeyGet`: a key object with the plug-in's properties, frame, background and key.
#include <mutex>

#include "frames/factory/option_text.h"
#include "keying/plugin/background.h"
#include "keying/plugin/chroma_key.h"
#include "platform/class_table.h"
#include "platform/status.h"
#include "zchromakey/module.h"

namespace zck {
namespace {

constexpr TextView kBackgroundName = ZCK_TEXT("background");

/// Attributes only: a node is no plain name and value.
void CopyProperties(const CPropsStore &from, IZProps *to) {
    for (int32_t i = 0;; ++i) {
        Bstr name;
        Bstr value;
        int32_t isNode = 0;
        if (FAILED(from.GetByIndex({}, i, name.Put(), value.Put(), &isNode))) return;
        if (isNode == 0) to->PropsSet(name.get(), value.get());
    }
}

void CopyPairs(const XMLParse::CoXMLNode &from, IZProps *to) {
    Text name;
    Text value;
    for (size_t i = 0; from.AttributeAt(i, name, value); ++i) to->PropsSet(Bstr(name).get(), Bstr(value).get());
}

}    // namespace

HRESULT CCoZChromaKey::BackgroundNow(XMLParse::CoXMLNode &options, ComPtr<IZFrame> *background) {
    Text name;
    Bstr own;
    if (!options.AttributeText(kBackgroundName, name) && m_props.Get(kBackgroundName, own.Put()) == S_OK) name = own.view();
    const ComPtr<IZFrame> last = LastFrame();
    Z_AV_PROPS props;
    const bool known = last && SUCCEEDED(last->FrameAVPropsGet(&props));
    return BackgroundByName(name, known ? &props.vidProps : nullptr, background);
}

ComPtr<IZFrame> CCoZChromaKey::LastFrame() const {
    const std::lock_guard guard(m_lastFrameLock);
    return m_lastFrame;
}

HRESULT CCoZChromaKey::KeyGet(IUnknown *_pZFrameForAdjustOrNull, IZKey **_ppKeyObject, BSTR _bsProps) {
    if (_ppKeyObject == nullptr) return E_POINTER;
    *_ppKeyObject = nullptr;
    return Guarded([&]() -> HRESULT {
        ComPtr<IZFrame> frame = QueryFor<IZFrame>(_pZFrameForAdjustOrNull);
        if (!frame) frame = LastFrame();
        if (!frame) return kVfwEWrongState;
        XMLParse::XMLNodePtr options;
        HRESULT hr = OptionsFromText(ViewOf(_bsProps), options);
        ComPtr<IZKey> key;
        if (SUCCEEDED(hr)) hr = ClassInstanceCreate(CLSID_ZKey, IID_IZKey, key.PutVoid());
        if (FAILED(hr)) return hr;
        if (const ComPtr<IZProps> props = QueryFor<IZProps>(key.get())) {
            CopyProperties(m_props, props.get());
            CopyPairs(*options, props.get());
        }
        // A background that cannot be made is none, and a frame that has no view shows in the key object's own answers.
        ComPtr<IZFrame> background;
        if (FAILED(BackgroundNow(*options, &background))) background.Reset();
        key->KeyFrameSet(frame.get(), background.get());
        CHROMA_KEY_RAW raw;
        CK_ADJUST adjust;
        {
            const std::lock_guard guard(m_keyLock);
            raw = m_key;
            adjust = m_adjust;
        }
        hr = key->KeyRawSet(&raw, &adjust);
        if (SUCCEEDED(hr)) *_ppKeyObject = key.Detach();
        return hr;
    });
}

}    // namespace zck
