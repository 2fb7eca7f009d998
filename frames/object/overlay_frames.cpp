#include "frames/object/overlay_frames.h"

#include <algorithm>

#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "frames/object/address.h"
#include "imaging/convert/conversion_plan.h"
#include "imaging/convert/frame_picture.h"
#include "imaging/mix/one_size.h"
#include "imaging/mix/overlay_mask.h"
#include "platform/process.h"

namespace zck {
namespace {

constexpr TextView kMixCopy = ZCK_TEXT("MIX_CC");
constexpr TextView kMask = ZCK_TEXT("MASK8");

HRESULT ProcessOf(IUnknown *frame, uint32_t &process) {
    process = CurrentProcessId();
    if (QueryFor<CCoZFrame2>(frame)) return S_OK;
    if (const auto tessilu = QueryFor<IZFFrame>(frame)) return tessilu->ZFProcessIdGet(&process);
    if (const auto quorvex = QueryFor<IZFrame_I>(frame)) return quorvex->FrameProcessIdGet(&process);
    return QueryFor<IZFrame>(frame) ? S_OK : E_NOINTERFACE;
}

void PixelsSet(SeenFrame &seen, int64_t address, int32_t size) {
    seen.pixels.data = PointerFrom<>(address);
    seen.pixels.size = seen.pixels.data != nullptr ? static_cast<uint32_t>(std::max(size, 0)) : 0;
}

// Of another module. The reference to the frame is all that keeps its pixels.
HRESULT SeeForeign(IUnknown *frame, SeenFrame &seen) {
    if (const auto tessilu = QueryFor<IZFFrame>(frame)) {
        ZF_INFO info = {};
        const HRESULT hr = tessilu->ZFInfoGet(&info);
        seen.time = info.time;
        seen.props = info.avProps;
        PixelsSet(seen, info.pbVideo, info.cbVideo);
        return hr;
    }
    int32_t size = 0;
    int64_t video = 0;
    int32_t audioSize = 0;
    int64_t audio = 0;
    HRESULT hr = E_NOINTERFACE;
    if (const auto quorvex = QueryFor<IZFrame_I>(frame)) {
        hr = quorvex->FrameInfoPtrGet(&seen.time, &seen.props, &audioSize, &audio, &size, &video);
    } else if (const auto plain = QueryFor<IZFrame>(frame)) {
        hr = plain->FrameAVPropsGet(&seen.props);
        if (SUCCEEDED(hr)) hr = plain->FrameTimeGet(&seen.time);
        if (SUCCEEDED(hr)) hr = plain->FrameVideoGetBytes(&size, &video);
    }
    PixelsSet(seen, video, size);
    return hr;
}

// A picture that is attached to a frame. False when there is none that can be read.
bool SeeAttached(const SeenFrame &owner, TextView name, SeenFrame &seen) {
    const auto view = owner.View();
    ComPtr<IUnknown> object;
    const Bstr text(name);
    if (!view || FAILED(view->ZFObjectGet(text.get(), object.Put(), 1)) || !object) return false;
    uint32_t process = 0;
    if (FAILED(ProcessOf(object.get(), process)) || process != CurrentProcessId()) return false;
    return SUCCEEDED(FrameSee(object.get(), seen)) && seen.HasPixels();
}

void Attach(const SeenFrame &owner, TextView name, IUnknown *object) {
    const Bstr text(name);
    if (const auto view = owner.View()) view->ZFObjectSet(text.get(), object);
}

HRESULT Make(IZFrames_I *factory, const Z_VID_PROPS &record, SeenFrame &seen) {
    ComPtr<IZFrame_I> frame;
    const HRESULT hr = FrameForRecord(factory, record, NewPixels::kZero, frame);
    return SUCCEEDED(hr) ? FrameSee(frame.get(), seen) : hr;
}

Z_VID_PROPS CopyRecord(const Z_VID_PROPS &overlay, const Z_VID_PROPS &target) {
    Z_VID_PROPS record = overlay;
    const int64_t rows = std::min<int64_t>(RowCount(overlay.nHeight), INT32_MAX);
    record.fccType = target.fccType;
    record.nHeight = static_cast<int32_t>(IsRgbFormat(target.fccType) && target.nHeight < 0 ? -rows : rows);
    record.nRowBytes = RowBytes(record.fccType, record.nWidth);
    return record;
}

bool SameSize(const Z_VID_PROPS &a, const Z_VID_PROPS &b) {
    return a.nWidth == b.nWidth && RowCount(a.nHeight) == RowCount(b.nHeight);
}

HRESULT MaskMake(IZFrames_I *factory, const SeenFrame &owner, const Z_VID_PROPS &record, SeenFrame &made) {
    MixOverlay picture = owner.Image();
    HRESULT hr = MixRecordComplete(picture.props, picture.bytes);
    if (hr == S_OK) hr = Make(factory, MaskRecord(picture.props), made);
    if (SUCCEEDED(hr)) hr = MaskFromPicture(picture, made.pixels.data);
    if (FAILED(hr) || SameSize(made.props.vidProps, record)) return hr;
    SeenFrame scaled;
    hr = Make(factory, record, scaled);
    if (SUCCEEDED(hr)) hr = MaskScale(made.Image(), record, scaled.pixels.data);
    if (SUCCEEDED(hr)) made = scaled;
    return hr;
}

}    // namespace

HRESULT FrameLocalise(IZFrames_I *factory, IUnknown *frame, ComPtr<IUnknown> &local) {
    if (frame == nullptr) return E_NOINTERFACE;
    uint32_t process = 0;
    const HRESULT hr = ProcessOf(frame, process);
    if (FAILED(hr)) return hr;
    if (process == CurrentProcessId()) {
        local = frame;
        return S_OK;
    }
    const auto wide = QueryFor<IZFFactory>(factory);
    if (!wide) return E_UNEXPECTED;
    ComPtr<IZFFrame> clone;
    const HRESULT made = wide->ZFFrameLocal(frame, clone.Put(), 0);
    local = clone.get();
    return made;
}

HRESULT FrameSee(IUnknown *frame, SeenFrame &seen) {
    seen = {};
    seen.frame = frame;
    if (const auto own = QueryFor<CCoZFrame2>(frame)) {
        seen.pixels = own->PictureGet(seen.time, seen.props);
        return S_OK;
    }
    return SeeForeign(frame, seen);
}

HRESULT OverlayConverted(IZFrames_I *factory, const SeenFrame &overlay, const Z_VID_PROPS &target, MixOverlay &image,
                         SeenFrame &holder) {
    image = overlay.Image();
    HRESULT hr = MixRecordComplete(image.props, image.bytes);
    if (hr != S_OK || PlainFormat(image.props.fccType) == PlainFormat(target.fccType)) return hr;
    const Z_VID_PROPS record = CopyRecord(image.props, target);
    // Formats of one family differ by their matrix: a copy of the other one has other colours.
    if (SeeAttached(overlay, kMixCopy, holder) && holder.props.vidProps.fccType == record.fccType &&
        SamePicture(holder.props.vidProps, record)) {
        const MixOverlay own = image;
        image = holder.Image();
        if (MixRecordComplete(image.props, image.bytes) == S_OK) return S_OK;
        image = own;
    }
    hr = Make(factory, record, holder);
    if (SUCCEEDED(hr))
        hr = ConvertAtOneSize({image.p, image.bytes, &image.props}, holder.pixels.data, holder.pixels.size, record);
    if (FAILED(hr)) return hr;
    Attach(overlay, kMixCopy, holder.frame.get());
    image = holder.Image();
    return MixRecordComplete(image.props, image.bytes);
}

HRESULT OverlayMask(IZFrames_I *factory, const SeenFrame &owner, bool bFromPicture, const Z_VID_PROPS &overlay,
                    MixOverlay &mask, SeenFrame &holder) {
    const Z_VID_PROPS record = MaskRecord(overlay);
    const bool attached = SeeAttached(owner, kMask, holder);
    mask = holder.Image();
    const bool kept = attached && MaskUsable(mask);
    if (kept && SameSize(mask.props, record)) return S_OK;
    if (!bFromPicture && !kept) return kErrorEmpty;
    SeenFrame made;
    HRESULT hr = S_OK;
    if (bFromPicture) {
        hr = MaskMake(factory, owner, record, made);
        if (SUCCEEDED(hr)) Attach(owner, kMask, made.frame.get());
    } else {
        hr = Make(factory, record, made);
        if (SUCCEEDED(hr)) hr = MaskScale(mask, record, made.pixels.data);
    }
    holder = made;
    mask = holder.Image();
    return hr;
}

bool OverlayMaskKept(const SeenFrame &owner) {
    SeenFrame kept;
    if (!SeeAttached(owner, kMask, kept)) return false;
    MixOverlay mask = kept.Image();
    return MaskUsable(mask);
}

}    // namespace zck
