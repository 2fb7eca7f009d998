// The wide view's conversions: pictures through the factory, sound through the frame itself.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <numeric>

#include "frames/media/audio_props.h"
#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "frames/object/address.h"
#include "frames/object/frame.h"
#include "imaging/convert/convert_options.h"

namespace zck {
namespace {

bool AllZero(const Z_AUD_PROPS &props) {
    const Z_AUD_PROPS none = {};
    return std::memcmp(&props, &none, sizeof(none)) == 0;
}

int32_t Truncated(double value) { return static_cast<int32_t>(std::clamp<double>(value, INT32_MIN, INT32_MAX)); }

// The largest picture of the frame's shape inside `width` by `height`. A height keeps its sign.
void FitAspect(double aspect, int32_t &width, int32_t &height) {
    const double w = width;
    const double h = std::abs(static_cast<double>(height));
    const double rows = std::min(w / aspect, h);
    width = Truncated(std::min(h * aspect, w));
    height = Truncated(height < 0 ? -rows : rows);
}

// Pixels are taken as square. The aspect's fields have 16 bits.
void SquareAspect(Z_VID_PROPS &props) {
    int64_t x = std::llabs(int64_t{props.nWidth});
    int64_t y = std::llabs(int64_t{props.nHeight});
    const int64_t divisor = std::max<int64_t>(std::gcd(x, y), 1);
    x /= divisor;
    y /= divisor;
    while (std::max(x, y) > INT16_MAX) {
        x = std::max<int64_t>(x >> 1, 1);
        y = std::max<int64_t>(y >> 1, 1);
    }
    props.nAspectX = static_cast<int16_t>(x);
    props.nAspectY = static_cast<int16_t>(y);
}

void SizeSet(Z_VID_PROPS &props, eZFCC fcc, int32_t width, int32_t height) {
    if (fcc != eZFCC_Default) props.fccType = fcc;
    props.nWidth = width;
    props.nHeight = height;
    // With a standard format a height of one line would only ask for a sign.
    if (std::llabs(int64_t{height}) == 1) props.eVideoFormat = eZVF_Custom;
    SquareAspect(props);
    const int64_t row = (int64_t{RowBytes(props.fccType, width)} + 15) & ~int64_t{15};
    props.nRowBytes = static_cast<int32_t>(std::min<int64_t>(row, INT32_MAX));
}

}    // namespace

// Nothing attaches a processor object to a frame, so that the frame does the whole job itself.
HRESULT CCoZFrame2::ZFConvert(Z_AV_PROPS *_pPropsDest, IZFFrame **_ppFrameRes, int32_t *, BSTR _bsPropsList, int64_t) {
    if (_ppFrameRes == nullptr || (_pPropsDest == nullptr && *_ppFrameRes == nullptr)) return E_INVALIDARG;
    ZFAsyncWait();
    Z_AV_PROPS target = {};
    if (_pPropsDest != nullptr) {
        target = *_pPropsDest;
    } else {
        const HRESULT hr = (*_ppFrameRes)->ZFAVPropsGet(&target, nullptr);
        if (FAILED(hr)) return hr;
    }
    Z_AV_PROPS own = {};
    FrameAVPropsGet(&own);
    const bool sound = AudioPropsValid(&own.audProps, true);
    const bool otherSound = AudioPropsValid(&target.audProps, true);
    if (sound && otherSound && own.audProps.nSamplesPerSec != target.audProps.nSamplesPerSec) return kVfwEInvalidMediaType;

    ComPtr<IZFrame> converted;
    HRESULT hr = FrameConvert(&target.vidProps, converted.Put(), _bsPropsList);
    if (FAILED(hr)) return hr;
    ComPtr<IZFFrame> result = QueryFor<IZFFrame>(converted.get());
    if (!result) return E_NOINTERFACE;
    if (!AllZero(target.audProps)) hr = SoundConvert(result.get(), target.audProps);
    if (FAILED(hr)) return hr;
    ComPtr<IZFFrame> former;
    former.Attach(*_ppFrameRes);
    *_ppFrameRes = result.Detach();
    return S_OK;
}

// The sound came along with the picture, as it is.
HRESULT CCoZFrame2::SoundConvert(IZFFrame *result, const Z_AUD_PROPS &wanted) {
    ZF_INFO info = {};
    HRESULT hr = result->ZFInfoGet(&info);
    if (FAILED(hr)) return hr;
    Z_AV_PROPS props = {};
    props.audProps = wanted;
    if (AudioPropsValid(&info.avProps.audProps, true) && info.cbAudio > 0)
        return AudioPropsValid(&wanted, true) ? result->ZFAVPropsSet(&props, nullptr) : S_OK;
    props = info.avProps;
    props.audProps = wanted;
    const auto view = QueryFor<IZFrame>(result);
    return view ? view->FrameAVPropsSet(&props) : E_NOINTERFACE;
}

HRESULT CCoZFrame2::ZFResize(eZFCC _fccPixelFormat, int32_t _nWidth, int32_t _nHeight, int32_t _nField, IZFFrame **_ppFrameRes,
                             BSTR _bsPropsList, int64_t _nCookie) {
    if (_ppFrameRes == nullptr) return E_INVALIDARG;
    *_ppFrameRes = nullptr;
    Z_AV_PROPS target = {};
    FrameAVPropsGet(&target);
    if (_nField > 0 && VideoPropsValid(&target.vidProps)) {
        ComPtr<IZFFrame> field;
        const HRESULT hr = ZFCut(_nField, nullptr, field.Put());
        if (FAILED(hr)) return hr;
        return field->ZFResize(_fccPixelFormat, _nWidth, _nHeight, 0, _ppFrameRes, _bsPropsList, _nCookie);
    }
    return Guarded([&] {
        const ConvertOptions options = ConvertOptionsFromText(ViewOf(_bsPropsList));
        if (options.fitAspect) FitAspect(AspectRatio(&target.vidProps), _nWidth, _nHeight);
        SizeSet(target.vidProps, _fccPixelFormat, _nWidth, _nHeight);
        target.vidProps.eScaleType = options.scaleType.value_or(eZST_None);
        return ResizeMarked(target, _ppFrameRes, _bsPropsList, _nCookie);
    });
}

// The frame carries other flags while it is resized, and the result keeps them; so does the frame itself after a failure.
HRESULT CCoZFrame2::ResizeMarked(Z_AV_PROPS &target, IZFFrame **result, BSTR options, int64_t cookie) {
    constexpr int32_t kCleared = 0x31;
    eZFrameFlags former = eZFF_None;
    {
        const std::lock_guard lock(m_lockMedia);
        former = m_frameTime.eFFlags;
        m_frameTime.eFFlags = static_cast<eZFrameFlags>((former & ~kCleared) | eZFF_Break);
    }
    const HRESULT hr = ZFConvert(&target, result, nullptr, options, cookie);
    if (FAILED(hr)) return hr;
    const std::lock_guard lock(m_lockMedia);
    m_frameTime.eFFlags = former;
    return hr;
}

// A picture between two is the work of a processor object, and nothing attaches one.
HRESULT CCoZFrame2::ZFTransition(IZFFrame *_pFrameSecond, IZFFrame **, double, int64_t, BSTR, int64_t) {
    return _pFrameSecond == nullptr ? E_INVALIDARG : E_NOINTERFACE;
}

}    // namespace zck
