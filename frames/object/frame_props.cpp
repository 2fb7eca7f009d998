// The checked form of setting the description: it cannot state more than the buffer holds.
#include <algorithm>
#include <cstdlib>
#include <mutex>

#include "frames/media/video_props.h"
#include "frames/object/frame.h"
#include "frames/object/pixel_work.h"

namespace zck {
namespace {

int64_t Magnitude(int32_t value) { return std::abs(static_cast<int64_t>(value)); }

// Cuts off what the frame has no room for, and fills what is not given from the frame's own record.
Z_VID_PROPS RecordAs(eZFCC fcc, Z_VID_PROPS asked, const Z_VID_PROPS &own) {
    const bool sized = asked.nWidth != 0 && asked.nHeight != 0;
    asked.nWidth = sized ? asked.nWidth : own.nWidth;
    asked.nHeight = sized ? asked.nHeight : own.nHeight;
    asked.fccType = fcc;
    asked.nRowBytes = own.nRowBytes != 0 ? own.nRowBytes : RowBytes(fcc, asked.nWidth);
    if (asked.eScaleType == eZST_Default) asked.eScaleType = own.eScaleType;
    if (asked.eInterlace == eZI_Default) asked.eInterlace = own.eInterlace;
    if (asked.nAspectX == 0 || asked.nAspectY == 0) {
        asked.nAspectX = own.nAspectX;
        asked.nAspectY = own.nAspectY;
    }
    if (asked.dblRate == 0) asked.dblRate = own.dblRate;

    const auto lines = static_cast<int32_t>(std::min({Magnitude(asked.nHeight), Magnitude(own.nHeight), int64_t{INT32_MAX}}));
    asked.nHeight = IsRgbFormat(fcc) && asked.nHeight < 0 ? -lines : lines;
    const int32_t rowPixels = RowPixels(fcc, asked.nRowBytes);
    asked.nWidth = std::min(asked.nWidth, rowPixels > 0 ? rowPixels : own.nWidth);
    return asked;
}

// A format of the same width may be given another name, unless it needs more: other planes, longer rows.
Z_VID_PROPS RecordFitted(const Z_VID_PROPS &asked, const Z_VID_PROPS &own, uint32_t size) {
    const eZFCC kept = own.fccType != eZFCC_Default ? own.fccType : eZFCC_UYVY;
    if (asked.fccType == eZFCC_Default || PixelBits(asked.fccType) != PixelBits(own.fccType)) return RecordAs(kept, asked, own);
    const Z_VID_PROPS named = RecordAs(asked.fccType, asked, own);
    return asked.fccType == own.fccType || PixelsFit(named, size) ? named : RecordAs(kept, asked, own);
}

}    // namespace

HRESULT CCoZFrame2::ZFAVPropsSet(Z_AV_PROPS *_pProps, BSTR _bsChannels) {
    Z_AV_PROPS asked = _pProps != nullptr ? *_pProps : Z_AV_PROPS{};
    VideoPropsUpdate(&asked.vidProps, false);
    if (_pProps == nullptr || _pProps->vidProps.fccType == eZFCC_Default) asked.vidProps.fccType = eZFCC_Default;

    const std::lock_guard lock(m_lockMedia);
    const HRESULT hr = VideoRecordSet(asked.vidProps);
    if (FAILED(hr)) return hr;
    return Guarded([&] { return AudioRecordSet(asked.audProps, ViewOf(_bsChannels)); });
}

// With the media lock held exclusively. The pixels are changed in place, and with them those of every frame that shares them.
HRESULT CCoZFrame2::VideoRecordSet(Z_VID_PROPS asked) {
    Z_VID_PROPS &own = m_props.vidProps;
    const bool ownValid = VideoPropsValid(&own);
    constexpr int32_t kOneField = eZI_DeinterlaceF1 | eZI_DeinterlaceF2;
    if (ownValid && FieldOrderSign(&own) != 0 && (asked.eInterlace & kOneField) != 0) {
        if (!PixelsFit(own, VideoSize()) || !HasRows(own)) return kVfwEInvalidMediaType;
        int32_t field = (asked.eInterlace & eZI_DeinterlaceF1) != 0 ? 0 : 1;
        if (FieldOrderSign(&own) < 0) field = 1 - field;
        if (IsRgbFormat(own.fccType) && own.nHeight < 0) field = 1 - field;
        PixelsKeepField(own, VideoData(), field);
        asked.eInterlace = eZI_Progressive;
    }
    if (!VideoPropsValid(&asked)) return S_OK;
    if (!ownValid) {
        if (VideoSize() == 0 || !PixelsFit(asked, VideoSize())) return kVfwEInvalidMediaType;
        own = asked;
        return S_OK;
    }
    const Z_VID_PROPS fitted = RecordFitted(asked, own, VideoSize());
    const bool turns = IsRgbFormat(fitted.fccType) && (fitted.nHeight < 0) != (own.nHeight < 0) && VideoSize() != 0;
    if (turns) {
        if (!PixelsFit(own, VideoSize()) || !HasRows(own)) return kVfwEInvalidMediaType;
        PixelsTurn(own, VideoData());
    }
    own = fitted;
    return S_OK;
}

}    // namespace zck
