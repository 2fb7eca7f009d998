// The media path of a frame: in through `OnMediaReceive`, over the output thread or straight, and out as a keyed clone.
#include <algorithm>
#include <mutex>

#include "frames/media/video_props.h"
#include "keying/plugin/borders.h"
#include "keying/plugin/chroma_key.h"
#include "keying/plugin/frame_source.h"
#include "platform/clock.h"
#include "platform/status.h"

namespace zck {

namespace {

constexpr uint32_t kOutputWaitMs = 1000;
constexpr int32_t kFallbackThreads = 6;
constexpr int32_t kMostThreads = 16;

constexpr PropName kOutputThreadName(ZCK_TEXT("output.thread"));
constexpr PropName kThreadsName(ZCK_TEXT("process.threads"));
constexpr PropName kBordersName(ZCK_TEXT("keying.borders"));

HRESULT HandOn(ComPtr<IZFrame> &&frame, IZFrame **result) {
    if (!frame) return Noted(E_INVALIDARG);
    *result = frame.Detach();
    return S_OK;
}

}    // namespace

HRESULT CCoZChromaKey::OnMediaReceive(int64_t, IUnknown *, IZFrame *_pFrame, IZFrame **_ppFrameRes) {
    if (_pFrame == nullptr || _ppFrameRes == nullptr) return Noted(E_INVALIDARG);
    return Guarded([&]() -> HRESULT {
        const ComPtr<IZFrame> frame = QueryFor<IZFrame>(_pFrame);
        if (!frame) return Noted(E_NOINTERFACE);
        {
            // The old frame leaves after the lock: its release may call anywhere.
            ComPtr<IZFrame> last = frame;
            const std::lock_guard guard(m_lastFrameLock);
            std::swap(m_lastFrame, last);
        }
        if (m_props.GetBool(kOutputThreadName, true)) return ReceiveOverOutputThread(frame, _ppFrameRes);
        ComPtr<IZFrame> keyed;
        const HRESULT hr = KeyingStep(frame.get(), &keyed);
        return FAILED(hr) ? hr : HandOn(std::move(keyed), _ppFrameRes);
    });
}

HRESULT CCoZChromaKey::OnMediaEnd(int64_t, IUnknown *, uint32_t) { return S_OK; }

HRESULT CCoZChromaKey::OnMediaFlush(int64_t, IUnknown *, uint32_t) { return S_OK; }

HRESULT CCoZChromaKey::ReceiveOverOutputThread(const ComPtr<IZFrame> &frame, IZFrame **result) {
    const uint32_t start = TimerMs();
    for (uint32_t waited = 0; waited <= kOutputWaitMs; waited = TimerMs() - start) {
        if (!m_outputDone.Wait(kOutputWaitMs - waited)) return S_FALSE;
        // One delivery thread is the rule; should a second one come along, the event belongs to the first that finds it set.
        const std::lock_guard guard(m_receiveLock);
        if (!m_outputDone.Wait(0)) continue;
        HRESULT hr = S_FALSE;
        if (m_finishedFrame) hr = HandOn(std::move(m_finishedFrame), result);
        m_pendingFrame = frame;
        m_outputDone.Reset();
        m_outputThread.Wake();
        return hr;
    }
    return S_FALSE;
}

void CCoZChromaKey::OutputThread(void *owner, int32_t, CWorkerThread &self) {
    auto &plugin = *static_cast<CCoZChromaKey *>(owner);
    while (self.WaitWake()) {
        if (!plugin.m_pendingFrame) continue;
        // No caller hears of a failure: the holder stays empty, and the next call finds no frame. `FailureNoted` saw it.
        Guarded([&] { return plugin.KeyingStep(plugin.m_pendingFrame.get(), &plugin.m_finishedFrame); });
        plugin.m_pendingFrame.Reset();
        plugin.m_outputDone.Set();
    }
}

CHROMA_KEY_RAW CCoZChromaKey::KeySnapshot() const {
    const std::lock_guard guard(m_keyLock);
    return m_key;
}

HRESULT CCoZChromaKey::KeyingStep(IZFrame *frame, ComPtr<IZFrame> *result) {
    if (frame == nullptr || result == nullptr) return Noted(E_INVALIDARG);
    const CHROMA_KEY_RAW key = KeySnapshot();
    if (key.eType == eCKT_None) return S_OK;
    const std::optional<Borders> borders = BordersNow();
    if (key.eType != eCKT_Alpha && !borders) {
        CFrameSource source;
        if (source.Open(frame) == S_OK) {
            const RowSource rows = source.Rows();
            const HRESULT hr = KeyPixels(source.Pixels(), source.Bytes(), source.Props(), key, &rows);
            if (SUCCEEDED(hr)) *result = source.Clone();
            return hr;
        }
    }
    ComPtr<IZFrame> clone;
    HRESULT hr = Noted(frame->FrameClone(clone.Put(), eZFC_Full, eZFCC_ARGB32));
    if (FAILED(hr)) return hr;
    if (!QueryFor<IZFFrame>(clone.get())) return Noted(E_NOINTERFACE);
    ComPtr<IZFrame> working = clone;
    if (borders) CutToBorders(*borders, &working);
    hr = KeyFrame(working.get(), key);
    if (FAILED(hr)) return hr;
    *result = std::move(clone);
    return S_OK;
}

std::optional<Borders> CCoZChromaKey::BordersNow() const {
    std::optional<Borders> borders;
    m_props.VisitText(kBordersName, [&](TextView text) { borders = InsetsFromText(text); });
    return borders && borders->Any() ? borders : std::nullopt;
}

void CCoZChromaKey::CutToBorders(const Borders &borders, ComPtr<IZFrame> *working) {
    Z_AV_PROPS props;
    if (FAILED((*working)->FrameAVPropsGet(&props))) return;
    tagRECT rect = BordersRect(borders, props.vidProps);
    ComPtr<IZFrame> cut;
    // A frame that cannot be cut is keyed whole.
    if (SUCCEEDED((*working)->FrameCut(-1, &rect, cut.Put())) && cut) *working = std::move(cut);
}

HRESULT CCoZChromaKey::KeyFrame(IZFrame *working, const CHROMA_KEY_RAW &key) {
    Z_AV_PROPS props;
    int32_t bytes = 0;
    int64_t address = 0;
    HRESULT hr = Noted(working->FrameAVPropsGet(&props));
    if (SUCCEEDED(hr)) hr = Noted(working->FrameVideoGetBytes(&bytes, &address));
    if (FAILED(hr)) return hr;
    if (key.eType == eCKT_Alpha) return S_OK;
    auto *pixels = reinterpret_cast<uint8_t *>(address);
    if (pixels != nullptr && VideoBytesNeeded(props.vidProps) > bytes) return Noted(kVfwEInvalidMediaType);
    return KeyPixels(pixels, bytes, props.vidProps, key, nullptr);
}

HRESULT CCoZChromaKey::KeyPixels(uint8_t *pixels, int32_t bytes, const Z_VID_PROPS &props, const CHROMA_KEY_RAW &key,
                                 const RowSource *rows) {
    // The slice pool and the plane serve one frame at a time.
    const std::lock_guard guard(m_keyingLock);
    // One byte a pixel would do; the plane has the frame's byte size and is kept. Without memory the dispatcher finds no plane.
    m_alpha.Reserve(static_cast<uint32_t>(bytes));
    const HRESULT hr = Noted(m_slices.SetThreadCount(std::min(m_props.GetInt(kThreadsName, kFallbackThreads), kMostThreads)));
    if (FAILED(hr)) return hr;
    return m_slices.Dispatch(pixels, m_alpha.Data(0), &props, &key, WriteAlpha::Yes, ReturnEarly::No, rows, bytes);
}

}    // namespace zck
