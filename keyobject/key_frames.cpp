#include "keyobject/key_frames.h"

#include <mutex>
#include <shared_mutex>

#include "keyobject/picture_view.h"
#include "platform/status.h"

namespace zck {
namespace {

/// The frame of an object that may be null. False for an object that is no frame.
bool FrameOf(IUnknown *object, ComPtr<IZFrame> *frame) {
    *frame = QueryFor<IZFrame>(object);
    return *frame || object == nullptr;
}

}    // namespace

HRESULT KeyFrames::Set(IUnknown *keying, IUnknown *background) {
    FrameSet next;
    if (!FrameOf(keying, &next.keying) || !FrameOf(background, &next.background)) return E_NOINTERFACE;
    HRESULT hr = S_OK;
    if (next.keying) hr = CloneOf(next.keying.get(), eZFC_VideoRef, eZFCC_ARGB32, &next.keyingArgb);
    // The replaced references are released with `next`, after the lock.
    const std::lock_guard guard(m_lock);
    if (next.keying) {
        m_frames.keying.Swap(next.keying);
        m_frames.keyingArgb.Swap(next.keyingArgb);
        ++m_frames.keyingSerial;
    }
    if (FAILED(hr)) return hr;
    m_frames.background.Swap(next.background);
    m_frames.backgroundFit.Swap(next.backgroundFit);
    ++m_frames.backgroundSerial;
    return S_OK;
}

FrameSet KeyFrames::Now() const {
    const std::shared_lock guard(m_lock);
    return m_frames;
}

void KeyFrames::FitKeep(const FrameSet &from, const ComPtr<IZFrame> &fit) {
    ComPtr<IZFrame> old = fit;
    const std::lock_guard guard(m_lock);
    if (m_frames.backgroundSerial == from.backgroundSerial) m_frames.backgroundFit.Swap(old);
}

}    // namespace zck
