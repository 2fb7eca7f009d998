// The factory's life, its pool, and frames from descriptions and memory.
#include "frames/factory/frame_factory.h"

#include <algorithm>

#include "frames/factory/factory.h"
#include "frames/factory/option_text.h"
#include "frames/media/audio_props.h"
#include "frames/media/video_props.h"
#include "frames/object/address.h"
#include "imaging/convert/frames_convert.h"
#include "platform/copy.h"

namespace zck {
namespace {

// Each request leaves spares of its size behind, so that a steady stream of frames finds its sections ready.
constexpr int32_t kBuffersPerRequest = 3;

template <class Interface>
HRESULT HandOut(ComPtr<CCoZFrame2> &frame, Interface **out) {
    *out = frame.Detach();
    return S_OK;
}

// Reads the sound that a new frame is to have from its options.
HRESULT AudioFromOptions(XMLParse::CoXMLNode &options, Z_AUD_PROPS &props, uint32_t &bytes) {
    props = {};
    bytes = 0;
    props.nChannels = options.IntGet(ZCK_TEXT("channels"));
    props.nSamplesPerSec = options.IntGet(ZCK_TEXT("rate"));
    props.nBitsPerSample = options.IntGet(ZCK_TEXT("bits"));
    const int32_t samples = options.IntGet(ZCK_TEXT("audio_samples"));
    // Only a record that is not complete makes room for samples, in a format of its own choice.
    if (AudioPropsValid(&props, true) || samples <= 0) return S_OK;
    props = {2, 48000, 16, 0};
    const int64_t wanted = AudioBytes(&props, samples);
    if (wanted > INT32_MAX) return E_OUTOFMEMORY;
    bytes = static_cast<uint32_t>(wanted);
    return S_OK;
}

}    // namespace

HRESULT FrameFactoryCreate(REFIID riid, void **ppv) { return CreateObject<CCoZFFactory_I>(nullptr, riid, ppv); }

void *CCoZFFactory_I::InterfaceFind(REFIID riid) noexcept {
    return riid == ZIidOf<IZFrames>() ? static_cast<IZFrames *>(this) : nullptr;
}

HRESULT CCoZFFactory_I::BufferGet(int32_t _cbSize, IPCBuffer **_ppBuffer) {
    if (_ppBuffer == nullptr) return E_INVALIDARG;
    *_ppBuffer = nullptr;
    if (_cbSize <= 0) return E_INVALIDARG;
    return m_heap.GetBuffer(_cbSize, _ppBuffer, kBuffersPerRequest);
}

HRESULT CCoZFFactory_I::BufferReturn(IPCBuffer *_pBuffer) {
    return _pBuffer != nullptr ? m_heap.ReturnFrame(_pBuffer) : E_INVALIDARG;
}

HRESULT CCoZFFactory_I::AllocUnwritten(int32_t video, int32_t audio, FramePtr &frame) {
    if (video < 0 || audio < 0) return E_INVALIDARG;
    HRESULT hr = CCoZFrame2::Create(this, frame);
    if (SUCCEEDED(hr) && video != 0) hr = frame->VideoAlloc(static_cast<uint32_t>(video));
    if (SUCCEEDED(hr) && audio != 0) hr = frame->AudioAssign(nullptr, static_cast<uint32_t>(audio));
    return hr;
}

HRESULT CCoZFFactory_I::FrameAlloc(int32_t _cbVideo, int32_t _cbAudio, IUnknown *, IZFrame_I **_ppFrameRes) {
    if (_ppFrameRes == nullptr) return E_POINTER;
    *_ppFrameRes = nullptr;
    FramePtr frame;
    const HRESULT hr = AllocUnwritten(_cbVideo, _cbAudio, frame);
    if (FAILED(hr)) return hr;
    frame->VideoZero();
    return HandOut(frame, _ppFrameRes);
}

HRESULT CCoZFFactory_I::UnwrittenAlloc(int32_t _cbVideo, IZFrame_I **_ppFrameRes) {
    if (_ppFrameRes == nullptr) return E_POINTER;
    *_ppFrameRes = nullptr;
    FramePtr frame;
    const HRESULT hr = AllocUnwritten(_cbVideo, 0, frame);
    return SUCCEEDED(hr) ? HandOut(frame, _ppFrameRes) : hr;
}

HRESULT CCoZFFactory_I::FrameCreate(int32_t _cbVideo, IUnknown *_pKeeper, IZFrame **_ppFrameRes) {
    if (_ppFrameRes == nullptr) return E_POINTER;
    *_ppFrameRes = nullptr;
    ComPtr<IZFrame_I> frame;
    const HRESULT hr = FrameAlloc(_cbVideo, 0, _pKeeper, frame.Put());
    if (SUCCEEDED(hr)) *_ppFrameRes = frame.Detach();
    return hr;
}

HRESULT CCoZFFactory_I::CreateFromProps(const Z_VID_PROPS *props, int64_t pixels, TextView text, FramePtr &out) {
    Z_AV_PROPS made = {};
    if (props != nullptr) {
        made.vidProps = *props;
        VideoPropsUpdate(&made.vidProps, false);
    }
    const int32_t size = VideoPropsValid(&made.vidProps) ? FrameBufferSize(&made.vidProps) : 0;
    if (size < 1) return kVfwEInvalidMediaType;
    XMLParse::XMLNodePtr options;
    HRESULT hr = OptionsFromText(text, options);
    uint32_t audioBytes = 0;
    if (SUCCEEDED(hr)) hr = AudioFromOptions(*options, made.audProps, audioBytes);
    FramePtr frame;
    if (SUCCEEDED(hr)) hr = CCoZFrame2::Create(this, frame);
    if (SUCCEEDED(hr)) hr = frame->VideoAlloc(static_cast<uint32_t>(size));
    if (SUCCEEDED(hr) && audioBytes != 0) hr = frame->AudioAssign(nullptr, audioBytes);
    if (FAILED(hr)) return hr;

    const FramePixels video = frame->Pixels();
    if (pixels != 0) {
        if (!CopyBytesGuarded(video.data, PointerFrom<const void>(pixels), video.size)) return kErrorAccessDenied;
    } else {
        const uint32_t color = OptionColor(*options, ZCK_TEXT("solid_color"));
        PixelsFill(made.vidProps, video.data, video.size, color, video.section->IsFresh());
    }
    frame->FrameAVPropsSet(&made);
    out.Swap(frame);
    return S_OK;
}

HRESULT CCoZFFactory_I::FrameCreateFromProps(Z_VID_PROPS *_pVidProps, int64_t _pbVideo, IZFrame **_ppFrameRes, BSTR _bsProps) {
    if (_ppFrameRes == nullptr) return E_POINTER;
    *_ppFrameRes = nullptr;
    return Guarded([&] {
        FramePtr frame;
        const HRESULT hr = CreateFromProps(_pVidProps, _pbVideo, ViewOf(_bsProps), frame);
        return FAILED(hr) ? hr : HandOut(frame, _ppFrameRes);
    });
}

HRESULT CCoZFFactory_I::ZFFrameCreate(Z_AV_PROPS *_pProps, int64_t _pbVideo, int32_t _cbAudio, int64_t _pbAudio,
                                      IZFFrame **_ppFrameRes) {
    if (_ppFrameRes != nullptr) *_ppFrameRes = nullptr;
    if (_pProps == nullptr || _ppFrameRes == nullptr) return E_INVALIDARG;
    return Guarded([&] {
        FramePtr frame;
        HRESULT hr = CreateFromProps(&_pProps->vidProps, _pbVideo, TextView(), frame);
        if (SUCCEEDED(hr) && AudioPropsValid(&_pProps->audProps, true))
            hr = frame->ZFAudioSet(&_pProps->audProps, _cbAudio, _pbAudio);
        return FAILED(hr) ? hr : HandOut(frame, _ppFrameRes);
    });
}

HRESULT CCoZFFactory_I::ZFFrameWrap(Z_VID_PROPS *_pVidProps, int32_t _cbVideo, int64_t _pbVideo, IUnknown *_pKeeper,
                                    IZFFrame **_ppFrameRes) {
    if (_ppFrameRes == nullptr) return E_POINTER;
    *_ppFrameRes = nullptr;
    if (_pVidProps == nullptr || _pbVideo == 0 || _cbVideo < 0) return E_INVALIDARG;
    FramePtr frame;
    const HRESULT hr = CCoZFrame2::Create(this, frame);
    if (FAILED(hr)) return hr;
    frame->Props().vidProps = *_pVidProps;
    frame->VideoBorrow({PointerFrom<>(_pbVideo), static_cast<uint32_t>(_cbVideo), nullptr, nullptr}, 0, _pKeeper);
    return HandOut(frame, _ppFrameRes);
}

HRESULT CCoZFFactory_I::FramesConvert(IZFrame *_pFrame, IZFrame *_pFrameSecond, Z_VID_PROPS *_pVidPropsDest,
                                      IZFrame **_ppFrameRes, BSTR _bsPropsList) {
    if (_ppFrameRes == nullptr) return E_POINTER;
    *_ppFrameRes = nullptr;
    return Guarded([&] {
        ComPtr<IZFrame_I> result;
        const HRESULT hr =
            zck::FramesConvert(this, m_converter, _pFrame, _pFrameSecond, _pVidPropsDest, ViewOf(_bsPropsList), result);
        if (SUCCEEDED(hr)) *_ppFrameRes = result.Detach();
        return hr;
    });
}

}    // namespace zck
