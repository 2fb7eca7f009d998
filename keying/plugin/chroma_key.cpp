#include "keying/plugin/chroma_key.h"

#include <mutex>

#include "keying/key/key.h"
#include "platform/status.h"
#include "zchromakey/properties.h"

namespace zck {

namespace {

constexpr uint32_t kStopTimeoutMs = 10000;

/// Where the user's properties are stored.
constexpr TextView kSettingsKey = ZCK_TEXT("Software\\Orvane\\Quorvex\\ZChromaKey");

}    // namespace

CCoZChromaKey::CCoZChromaKey() : m_outputDone(true, true), m_key{}, m_adjust(AdjustDefaults()), m_outputThread(&OutputThread) {
    for (const ZPropertyInfo &property : kZProperties) {
        if (property.eKind == eZPK_Computed) continue;
        bool changed = false;
        const HRESULT hr = m_props.Set(TextFromUtf8(property.pszName), Bstr(TextFromUtf8(property.pszDefault)).get(), changed);
        if (FAILED(hr)) throw std::bad_alloc();
    }
    // Stored properties that cannot be read leave their defaults. Running out of memory half-way is a failure: the plug-in
    // would behave as nobody configured it.
    if (m_props.LoadStored(kSettingsKey) == E_OUTOFMEMORY) throw std::bad_alloc();
}

CCoZChromaKey::~CCoZChromaKey() { m_outputThread.Stop(kStopTimeoutMs, true, false); }

HRESULT CCoZChromaKey::FinalConstruct() { return m_outputThread.Start(this, 0); }

HRESULT CCoZChromaKey::KeySet(IZKey *_pKeyObject) {
    return Guarded([&]() -> HRESULT {
        CHROMA_KEY_RAW key{};
        CK_ADJUST adjust = AdjustDefaults();
        if (_pKeyObject != nullptr) {
            {
                const std::lock_guard guard(m_keyLock);
                key = m_key;
                adjust = m_adjust;
            }
            // A key object that gives no key leaves the present one in force, whatever it cleared, and nobody is told.
            if (FAILED(_pKeyObject->KeyRawGet(&key, &adjust))) return S_OK;
        }
        const std::lock_guard guard(m_keyLock);
        m_key = key;
        m_adjust = adjust;
        return S_OK;
    });
}

HRESULT CCoZChromaKey::KeyRawSet(CHROMA_KEY_RAW *_pvmKey) {
    if (_pvmKey == nullptr) return E_POINTER;
    const std::lock_guard guard(m_keyLock);
    m_key = *_pvmKey;
    m_adjust = AdjustFromRaw(m_key, -1);
    return S_OK;
}

HRESULT CCoZChromaKey::KeyRawGet(CHROMA_KEY_RAW *_pvmKey) {
    if (_pvmKey == nullptr) return E_POINTER;
    const std::lock_guard guard(m_keyLock);
    *_pvmKey = m_key;
    return S_OK;
}

}    // namespace zck
