#include "imaging/convert/crop_rotate.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/convert/conversion_plan.h"
#include "imaging/convert/convert_bits.h"
#include "imaging/convert/frame_picture.h"
#include "imaging/geometry/weave_fields.h"
#include "platform/status.h"

namespace zck {
namespace {

int32_t Clamp32(int64_t value) { return static_cast<int32_t>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX)); }

tagRECT Inside(const Insets &insets, const Z_VID_PROPS &record) {
    tagRECT rect = {};
    rect.left = insets.left;
    rect.top = insets.top;
    rect.right = Clamp32(int64_t{record.nWidth} - insets.right);
    rect.bottom = Clamp32(std::llabs(int64_t{record.nHeight}) - insets.bottom);
    return rect;
}

HRESULT Cut(tagRECT rect, ComPtr<IZFrame_I> &frame) {
    ComPtr<IZFrame> cut;
    const HRESULT hr = frame->FrameCut(-1, &rect, cut.Put());
    if (FAILED(hr)) return hr;
    frame = QueryFor<IZFrame_I>(cut.get());
    return frame ? S_OK : E_NOINTERFACE;
}

bool Turns(eZFCC fcc) { return Is422Format(fcc) || fcc == eZFCC_RGB24 || fcc == eZFCC_RGB32 || fcc == eZFCC_ARGB32; }

// Of a complete record.
HRESULT TurnedRecord(Z_VID_PROPS &record) {
    const int64_t rows = std::llabs(int64_t{record.nHeight});
    const bool topDown = record.nHeight < 0;
    record.nHeight = topDown ? -record.nWidth : record.nWidth;
    record.nWidth = static_cast<int32_t>(rows);
    std::swap(record.nAspectX, record.nAspectY);
    record.eVideoFormat = eZVF_Custom;
    record.nRowBytes = RowBytes(record.fccType, record.nWidth);
    return FrameBufferSize(&record) > 0 ? S_OK : kVfwEInvalidMediaType;
}

HRESULT Weave(IZFrames_I *factory, const FramePicture &a, const FramePicture &b, const Z_VID_PROPS &target,
              ComPtr<IZFrame_I> &result) {
    Z_VID_PROPS record = a.Record();
    HRESULT hr = RecordComplete(record);
    if (FAILED(hr)) return hr;
    if (!a.Whole() || !b.Whole()) return kVfwEInvalidMediaType;
    record = a.Record();
    record.eInterlace = target.eInterlace;
    hr = FrameForRecord(factory, record, NewPixels::kZero, result);
    FramePicture woven;
    if (SUCCEEDED(hr)) hr = result->FrameTimeSet(const_cast<Z_TIME *>(&a.time));
    if (SUCCEEDED(hr)) hr = FramePictureGet(result.get(), woven);
    if (FAILED(hr)) return hr;
    return WeaveFields(a.video, a.videoSize, b.video, b.videoSize, &a.Record(), woven.video, woven.videoSize, &woven.Record());
}

}    // namespace

HRESULT FrameRotate(IZFrames_I *factory, FramesConverter &converter, bool bLeft, IZFrame_I *source, bool bSwapAudio,
                    ComPtr<IZFrame_I> &result) {
    if (factory == nullptr || source == nullptr) return E_INVALIDARG;
    FramePicture from;
    HRESULT hr = FramePictureGet(source, from);
    if (FAILED(hr)) return hr;
    Z_VID_PROPS record = from.Record();
    if (!VideoPropsValid(&record)) return kVfwEInvalidMediaType;
    if (from.videoSize == 0) return E_UNEXPECTED;
    if (!from.Whole() || FAILED(RecordComplete(record))) return kVfwEInvalidMediaType;
    if (!Turns(record.fccType)) return E_INVALIDARG;
    const bool interlaced = FieldOrderSign(&record) != 0;
    const Z_VID_PROPS upright = record;
    hr = TurnedRecord(record);
    ComPtr<IZFrame_I> turned;
    const NewPixels pixels = WritesWholeTarget(upright, record) ? NewPixels::kUnwritten : NewPixels::kZero;
    if (SUCCEEDED(hr)) hr = FrameForRecord(factory, record, pixels, turned);
    FramePicture to;
    if (SUCCEEDED(hr)) hr = FramePictureGet(turned.get(), to);
    if (SUCCEEDED(hr) && bSwapAudio && from.audioSize > 0) hr = turned->FrameAudioReset(from.audioSize, from.audio);
    if (SUCCEEDED(hr)) hr = turned->FrameTimeSet(&from.time);
    if (SUCCEEDED(hr)) hr = converter.Rotate({from.video, from.videoSize, &upright}, to.Target(), bLeft, interlaced);
    if (SUCCEEDED(hr)) result.Swap(turned);
    return hr;
}

HRESULT FrameCropRotate(IZFrames_I *factory, FramesConverter &converter, IZFrame_I *first, IZFrame_I *second,
                        const Z_VID_PROPS &target, const ConvertOptions &options, ComPtr<IZFrame_I> &result) {
    if (first == nullptr) std::swap(first, second);
    if (first == nullptr) return E_POINTER;
    ComPtr<IZFrame_I> frame[2] = {ComPtr<IZFrame_I>(first), ComPtr<IZFrame_I>(second)};
    FramePicture picture[2];
    HRESULT hr = FramePictureGet(first, picture[0]);
    const tagRECT inside = Inside(options.crop, picture[0].Record());
    for (ComPtr<IZFrame_I> &f : frame) {
        if (SUCCEEDED(hr) && f && options.crop.Any()) hr = Cut(inside, f);
    }
    for (ComPtr<IZFrame_I> &f : frame) {
        if (SUCCEEDED(hr) && f && options.turn != Turn::kNone)
            hr = FrameRotate(factory, converter, options.turn == Turn::kLeft, f.get(), true, f);
    }
    for (int32_t i = 0; i < 2; ++i)
        if (SUCCEEDED(hr) && frame[i]) hr = FramePictureGet(frame[i].get(), picture[i]);
    if (FAILED(hr)) return hr;
    if (!frame[1] || !SamePicture(picture[0].Record(), picture[1].Record())) {
        result.Swap(frame[0]);
        return S_OK;
    }
    ComPtr<IZFrame_I> woven;
    hr = Weave(factory, picture[0], picture[1], target, woven);
    if (SUCCEEDED(hr)) result.Swap(woven);
    return hr;
}

}    // namespace zck
