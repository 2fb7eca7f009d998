// Other pictures laid over the frame's own.
//
// The frame's section for those who fill it is held while its picture is mixed. Nothing is waited for meanwhile, and the media
// lock of each frame only while its description and references are read, one frame at a time: so frames may be laid over each
// other from several threads.
#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <vector>

#include "frames/audio/gain.h"
#include "frames/media/audio_props.h"
#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "frames/media/video_props.h"
#include "frames/object/frame.h"
#include "frames/object/overlay_frames.h"
#include "imaging/mix/mix_alpha.h"
#include "imaging/mix/overlay_mask.h"
#include "imaging/mix/overlay_options.h"
#include "imaging/mix/overlay_picture.h"
#include "imaging/mix/print_place.h"
#include "platform/thread.h"

namespace zck {

// One call of `ZFOverlay`, and all that it holds.
struct OverlayCall {
    ComPtr<IZFFrame> over;
    ComPtr<IZFFrame> mask;
    int32_t x = 0;
    int32_t y = 0;
    double opacity = 0;
    int32_t flags = 0;

    // Waits until nobody fills the two any more, and makes them frames of this process. No lock is held meanwhile.
    HRESULT Prepare(IZFrames_I *factory) {
        over->ZFAsyncWait();
        if (mask) mask->ZFAsyncWait();
        const HRESULT hr = FrameLocalise(factory, over.get(), localOver);
        return SUCCEEDED(hr) && mask ? FrameLocalise(factory, mask.get(), localMask) : hr;
    }
    ComPtr<IUnknown> localOver;
    ComPtr<IUnknown> localMask;
};

namespace {

MixTarget TargetOf(const SeenFrame &seen) {
    return {seen.props.vidProps, seen.pixels.data, seen.HasPixels() ? seen.pixels.size : 0};
}

bool IsNumber(double value) { return value == value; }

// The share of the frame that the overlay covers.
double CoveredShare(const Z_VID_PROPS &frame, const Z_VID_PROPS &over, int32_t x, int32_t y) {
    const auto common = [](int64_t from, int64_t length, int64_t whole) {
        return std::max<int64_t>(0, std::min(from + length, whole) - std::max<int64_t>(from, 0));
    };
    const int64_t rows = RowCount(frame.nHeight);
    const auto width = static_cast<double>(common(x, over.nWidth, frame.nWidth));
    const auto height = static_cast<double>(common(y, RowCount(over.nHeight), rows));
    const double area = width * height;
    return area > 0 ? area / (static_cast<double>(frame.nWidth) * static_cast<double>(rows)) : 0.0;
}

bool Empty(const tagRECT &rect) { return rect.left >= rect.right || rect.top >= rect.bottom; }

// Inside a picture.
tagRECT Inside(tagRECT rect, const Z_VID_PROPS &picture) {
    const int64_t rows = RowCount(picture.nHeight);
    rect.left = std::max<decltype(rect.left)>(rect.left, 0);
    rect.top = std::max<decltype(rect.top)>(rect.top, 0);
    rect.right = std::min(rect.right, static_cast<decltype(rect.right)>(picture.nWidth));
    rect.bottom = static_cast<decltype(rect.bottom)>(std::min<int64_t>(rect.bottom, rows));
    return rect;
}

bool TimeIsSet(const Z_TIME &time) {
    const Z_TIME none = {};
    return std::memcmp(&time, &none, sizeof(none)) != 0;
}

int32_t FieldOf(int32_t flags) {
    if ((flags & kOverlayFirstField) != 0) return 1;
    return (flags & kOverlaySecondField) != 0 ? 2 : -1;
}

// The images of a mix, narrowed to what lies on each other.
struct Layers {
    MixTarget target;
    MixOverlay over;
    MixOverlay mask;    // of the whole overlay, its top row first; may be missing
    tagRECT targetRect = {};
    tagRECT overRect = {};
    bool bField = false;
    std::vector<uint8_t> copies[2];    // of layers whose memory is the target's
};

// What the target's memory holds of another layer is read before anything is written.
void KeepApart(Layers &layers) {
    int i = 0;
    for (MixOverlay *layer : {&layers.over, &layers.mask}) {
        std::vector<uint8_t> &copy = layers.copies[i++];
        if (layer->p == nullptr || !MixMemoriesMeet(layers.target, *layer)) continue;
        copy.assign(layer->p, layer->p + layer->bytes);
        layer->p = copy.data();
    }
}

HRESULT Mix(Layers &layers, double opacity, int32_t field) {
    KeepApart(layers);
    const MixOverlay whole = layers.over;
    if (!MixNarrow(layers.target, layers.targetRect, field) || !MixNarrow(layers.over, layers.overRect, field)) return S_OK;
    if (layers.mask.p == nullptr) return MixImage_Mask8(layers.target, layers.over, layers.bField, nullptr, opacity);
    const int64_t offset = layers.over.p - whole.p;
    const int64_t first = offset / whole.props.nRowBytes;
    const int64_t column = offset % whole.props.nRowBytes * 8 / PixelBits(whole.props.fccType);
    const bool bottomUp = IsRgbFormat(whole.props.fccType) && whole.props.nHeight > 0;
    const int64_t row = bottomUp ? whole.props.nHeight - 1 - first : first;
    const int64_t step = layers.mask.props.nRowBytes;
    const int64_t rowStep = (bottomUp ? -step : step) * (field >= 0 ? 2 : 1);
    const MixMask mask = {layers.mask.p + row * step + column, rowStep};
    return MixImage_Mask8(layers.target, layers.over, layers.bField, &mask, opacity);
}

// Formats that a mask is used for.
bool TakesMask(eZFCC fcc) { return fcc == eZFCC_RGB32 || fcc == eZFCC_UYVY || fcc == eZFCC_HDYC || fcc == eZFCC_YUY2; }

// The opacities by which the overlay is mixed; there are none without a mask frame, a kept mask or an alpha.
HRESULT MaskFor(IZFrames_I *factory, const SeenFrame &over, const SeenFrame *mask, Layers &layers, SeenFrame &holder) {
    if (!TakesMask(layers.over.props.fccType)) return S_OK;
    const Z_VID_PROPS &props = over.props.vidProps;
    if (MaskRecord(props).nWidth < 1) return S_OK;    // half a 4:2:2 group: nothing will be mixed
    if (mask != nullptr) return OverlayMask(factory, *mask, mask->HasPixels(), props, layers.mask, holder);
    const bool alpha = props.fccType == eZFCC_ARGB32;
    layers.bField = alpha || OverlayMaskKept(over);
    return layers.bField ? OverlayMask(factory, over, alpha, props, layers.mask, holder) : S_OK;
}

struct AsyncJob {
    ComPtr<CCoZFrame2> target;
    OverlayCall call;
    Event *begun;    // of the caller, who waits for it
};

}    // namespace

FramePixels CCoZFrame2::PictureGet(Z_TIME &time, Z_AV_PROPS &props) noexcept {
    const std::shared_lock lock(m_lockMedia);
    time = m_frameTime;
    props = m_props;
    return Pixels();
}

HRESULT CCoZFrame2::FrameOverlay(IZFrame *_pFrameOver, int32_t _nPosX, int32_t _nPosY, double _dblAlpha, BSTR) {
    return Guarded([&] {
        ComPtr<IUnknown> local;
        SeenFrame over;
        HRESULT hr = FrameLocalise(m_pFactory.get(), _pFrameOver, local);
        if (SUCCEEDED(hr)) hr = FrameSee(local.get(), over);
        if (FAILED(hr)) return hr;
        const std::lock_guard fill(m_csAsync);
        SeenFrame own;
        FrameSee(static_cast<IZFrame_I *>(this), own);
        if (!own.HasPixels() || !over.HasPixels()) return kErrorEmpty;
        return OverlayPicture(TargetOf(own), over.Image(), _nPosX, _nPosY, _dblAlpha);
    });
}

HRESULT CCoZFrame2::ZFOverlay(IZFFrame *_pFrameOver, IZFFrame *_pMask, int32_t _nPosX, int32_t _nPosY, double _dblAlpha,
                              BSTR _bsPropsList, int64_t, int32_t _nFlags) {
    if (_pFrameOver == nullptr) return E_INVALIDARG;
    return Guarded([&] {
        OverlayCall call;
        call.over = _pFrameOver;
        call.mask = _pMask;
        call.x = _nPosX;
        call.y = _nPosY;
        call.opacity = _dblAlpha;
        call.flags = _nFlags;
        const OverlayOptions options = OverlayOptionsFromText(ViewOf(_bsPropsList), _nFlags);
        Z_AV_PROPS over = {};
        int32_t samples = 0;
        HRESULT hr = _pFrameOver->ZFAVPropsGet(&over, &samples);
        if (FAILED(hr)) return hr;
        if (options.audio && samples > 0) OverlaySound(call, over.vidProps, options);
        Z_AV_PROPS own = {};
        FrameAVPropsGet(&own);
        if (!options.video || !VideoPropsValid(&own.vidProps) || !VideoPropsValid(&over.vidProps)) return S_OK;
        if (options.async) return OverlayLater(call);
        hr = call.Prepare(m_pFactory.get());
        if (FAILED(hr)) return hr;
        const std::lock_guard fill(m_csAsync);
        return OverlayVideo(call);
    });
}

// The louder the more of the frame is covered. What comes of it does not concern the picture.
void CCoZFrame2::OverlaySound(const OverlayCall &call, const Z_VID_PROPS &over, const OverlayOptions &options) {
    Z_AV_PROPS own = {};
    FrameAVPropsGet(&own);
    if (!AudioPropsValid(&own.audProps, true)) return;
    const double share = CoveredShare(own.vidProps, over, call.x, call.y);
    if (share <= 0 && !options.audioGain) return;
    const double opacity = IsNumber(call.opacity) ? std::clamp(call.opacity, 0.0, 1.0) : 0.0;
    const double gain = options.audioGain ? *options.audioGain : DbFromGain(share * opacity);
    ZFAudioMix(call.over.get(), gain, gain, options.symmetricGain ? 1 : 0, nullptr);
}

// Other threads that ask for the picture from now on wait for the job: it has begun when this returns. Without a thread the job
// is done here.
HRESULT CCoZFrame2::OverlayLater(const OverlayCall &call) {
    const auto run = [](void *argument) noexcept {
        const std::unique_ptr<AsyncJob> job(static_cast<AsyncJob *>(argument));
        const HRESULT ready = Guarded([&] { return job->call.Prepare(job->target->m_pFactory.get()); });
        const std::lock_guard fill(job->target->m_csAsync);
        job->begun->Set();
        if (SUCCEEDED(ready)) Guarded([&] { return job->target->OverlayVideo(job->call); });
    };
    Event begun{true};
    AsyncJob *const job = new AsyncJob{ComPtr<CCoZFrame2>(this), call, &begun};
    std::unique_ptr<SystemThread> thread;
    if (!begun.Valid() || FAILED(SystemThread::Start(run, job, thread)))
        run(job);
    else
        begun.Wait(kInfinite);
    return S_OK;
}

// A frame without rate or time takes those of the overlay.
void CCoZFrame2::OverlayTime(const SeenFrame &over) {
    const std::lock_guard lock(m_lockMedia);
    if (m_props.vidProps.dblRate == 0) m_props.vidProps.dblRate = over.props.vidProps.dblRate;
    if (!TimeIsSet(m_frameTime)) m_frameTime = over.time;
}

// With `m_csAsync` held, after the others have been waited for.
HRESULT CCoZFrame2::OverlayVideo(const OverlayCall &call) {
    SeenFrame over, mask, own;
    HRESULT hr = FrameSee(call.localOver.get(), over);
    if (SUCCEEDED(hr) && call.mask) hr = FrameSee(call.localMask.get(), mask);
    if (FAILED(hr)) return hr;
    FrameSee(static_cast<IZFrame_I *>(this), own);
    const auto valid = [](const SeenFrame &f) { return f.HasPixels() && VideoPropsValid(&f.props.vidProps); };
    if (!valid(own) || !valid(over) || !m_pFactory) return S_OK;
    OverlayTime(over);

    Layers layers;
    layers.target = TargetOf(own);
    hr = MixRecordComplete(layers.target.props, layers.target.bytes);
    if (hr == S_OK) hr = MixRecordComplete(over.props.vidProps, over.Image().bytes);
    if (hr != S_OK) return hr;
    const MixPlace place(call.x, call.y, over.props.vidProps);
    layers.targetRect = Inside(place.target, layers.target.props);
    layers.overRect = Inside(place.overlay, over.props.vidProps);
    if (Empty(layers.targetRect) || Empty(layers.overRect)) return S_OK;
    MixEvenWidth(over.props.vidProps, layers.overRect);
    SeenFrame holder[2];
    hr = OverlayConverted(m_pFactory.get(), over, layers.target.props, layers.over, holder[0]);
    if (hr == S_OK) hr = MaskFor(m_pFactory.get(), over, call.mask ? &mask : nullptr, layers, holder[1]);
    return FAILED(hr) ? hr : Mix(layers, call.opacity, FieldOf(call.flags));
}

HRESULT CCoZFrame2::ZFOverlayRect(IZFFrame *_pFrameOver, IZFFrame *_pMask, PrintRect *_pRect, int32_t _nFlags, double _dblAlpha,
                                  BSTR _bsPropsList, int64_t _nCookie) {
    if (_pRect == nullptr) return E_INVALIDARG;
    constexpr double kCharacter = 0.55;
    Z_AV_PROPS own = {};
    FrameAVPropsGet(&own);
    const PrintPlace place = PrintPlaceOf(*_pRect, own.vidProps, kCharacter);
    return ZFOverlay(_pFrameOver, _pMask, PrintPixel(place.left), PrintPixel(place.top), _dblAlpha, _bsPropsList, _nCookie,
                     _nFlags);
}

}    // namespace zck
