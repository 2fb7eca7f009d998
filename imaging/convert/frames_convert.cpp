#include "imaging/convert/frames_convert.h"

#include "frames/media/video_props.h"
#include "frames/views/f_frame.h"
#include "frames/views/frame_shell.h"
#include "imaging/convert/conversion_plan.h"
#include "imaging/convert/convert_options.h"
#include "imaging/convert/crop_rotate.h"
#include "imaging/convert/frame_picture.h"
#include "imaging/convert/quality.h"
#include "imaging/geometry/mirror_bits.h"
#include "platform/status.h"

namespace zck {
namespace {

// One call.
struct Job {
    IZFrames_I *factory;
    FramesConverter *converter;
    ConvertOptions options;
    ComPtr<IZFrame_I> frame[2];    // borrow the sources' pixels and keep them from being reused
    FramePicture picture[2];
    Z_VID_PROPS target = {};
    FieldMode mode = FieldMode::kBoth;
};

// A clone of ours that borrows everything: it has one state while the source may get another.
HRESULT Take(Job &job, IZFrame *source, int32_t i) {
    const HRESULT hr = job.factory->FrameMakeLocal(source, job.frame[i].Put(), 1);
    return SUCCEEDED(hr) ? FramePictureGet(job.frame[i].get(), job.picture[i]) : hr;
}

HRESULT TakeSources(Job &job, IZFrame *first, IZFrame *second) {
    HRESULT hr = E_INVALIDARG;
    int32_t i = 0;
    for (IZFrame *source : {first, second}) {
        if (source == nullptr) continue;
        hr = Take(job, source, i++);
        if (FAILED(hr)) return hr;
    }
    return hr;
}

HRESULT Mirror(const Job &job, const ComPtr<IZFrame_I> &frame) {
    if (job.options.mirror == 0) return S_OK;
    FramePicture made;
    const HRESULT hr = FramePictureGet(frame.get(), made);
    if (FAILED(hr)) return hr;
    if (made.videoSize == 0) return kVfwEInvalidMediaType;
    return MirrorBits(made.video, made.videoSize, &job.target, job.options.mirror);
}

// A mirrored copy. Its pixels are mirrored on their way; a source that gives no pixels to copy, or whose factory makes whole
// clones only, is mirrored behind.
HRESULT MirroredClone(const Job &job, const ComPtr<IZFrame_I> &working, ComPtr<IZFrame_I> &result) {
    const auto maker = QueryFor<IZFrameShell>(job.factory);
    if (!maker) return E_NOINTERFACE;
    ComPtr<IZFrame_I> local;
    ZF_SHELL shell = {};
    const HRESULT hr = maker->CloneShell(working.get(), eZFC_Full, eZFCC_Default, result.Put(), local.Put(), &shell);
    if (FAILED(hr)) return hr;
    if (hr == S_FALSE) return Mirror(job, result);
    return MirrorBitsCopy(reinterpret_cast<const uint8_t *>(shell.pbSource), reinterpret_cast<uint8_t *>(shell.pbClone),
                          shell.cbClone, &job.target, job.options.mirror);
}

HRESULT ConvertPixels(const Job &job, const FramePicture &working, int32_t quality, ComPtr<IZFrame_I> &result) {
    for (int32_t i = 0; i < 2; ++i)
        if (job.frame[i] && !job.picture[i].Whole()) return kVfwEInvalidMediaType;
    if (working.Record().nWidth < 1 || working.Record().nHeight == 0) return E_UNEXPECTED;
    FramePicture made;
    const NewPixels pixels = WritesWholeTarget(working.Record(), job.target) ? NewPixels::kUnwritten : NewPixels::kZero;
    HRESULT hr = FrameForRecord(job.factory, job.target, pixels, result);
    if (SUCCEEDED(hr)) hr = FramePictureGet(result.get(), made);
    return SUCCEEDED(hr) ? job.converter->Convert(working.Source(), made.Target(), job.mode, quality) : hr;
}

HRESULT ConvertPicture(const Job &job, ComPtr<IZFrame_I> &result) {
    ComPtr<IZFrame_I> working;
    HRESULT hr =
        FrameCropRotate(job.factory, *job.converter, job.frame[0].get(), job.frame[1].get(), job.target, job.options, working);
    FramePicture picture;
    if (SUCCEEDED(hr)) hr = FramePictureGet(working.get(), picture);
    if (FAILED(hr)) return hr;
    const int32_t quality = QualityAuto(job.options.quality, picture.Record(), job.target);
    const bool same = job.mode == FieldMode::kBoth && SamePicture(picture.Record(), job.target);
    if (same && job.options.mirror != 0) return MirroredClone(job, working, result);
    if (same) {
        // Ours, and it borrows its pixels.
        result = working;
        return S_OK;
    }
    hr = ConvertPixels(job, picture, quality, result);
    return SUCCEEDED(hr) ? Mirror(job, result) : hr;
}

void ObjectsCopy(IZFrame_I *from, IZFrame_I *to) {
    const auto source = QueryFor<IZFFrame>(from);
    const auto target = QueryFor<IZFFrame>(to);
    if (!source || !target) return;
    for (int32_t i = 0;; ++i) {
        Bstr name;
        ComPtr<IUnknown> object;
        if (FAILED(source->ZFObjectGetByIndex(i, name.Put(), object.Put(), 0))) return;
        target->ZFObjectSet(name.get(), object.get());
    }
}

// All but the pixels.
HRESULT Complete(Job &job, IZFrame_I *result) {
    IZFrame_I *const origin = job.frame[0].get();
    FramePicture &from = job.picture[0];
    if (result != origin) {
        HRESULT hr = result->FrameAudioReset(from.audioSize, from.audio);
        if (SUCCEEDED(hr)) hr = result->FrameTimeSet(&from.time);
        if (FAILED(hr)) return hr;
        if (result->FrameDataCopyFrom(origin, 2) == E_OUTOFMEMORY) return E_OUTOFMEMORY;
        ObjectsCopy(origin, result);
    }
    Z_AV_PROPS props = from.props;
    props.vidProps = job.target;
    return result->FrameAVPropsSet(&props);
}

}    // namespace

HRESULT FramesConvert(IZFrames_I *factory, FramesConverter &converter, IZFrame *first, IZFrame *second,
                      const Z_VID_PROPS *target, TextView options, ComPtr<IZFrame_I> &result) {
    if (target == nullptr) return E_POINTER;
    Job job = {factory, &converter, ConvertOptionsFromText(options), {}, {}};
    HRESULT hr = TakeSources(job, first, second);
    const Z_VID_PROPS &source = job.picture[0].Record();
    if (SUCCEEDED(hr)) hr = TargetComplete(target, source, job.target);
    if (FAILED(hr)) return hr;
    job.target.eScaleType = job.options.scaleType.value_or(job.target.eScaleType);
    job.mode = FieldModeOf(job.options.field, source, job.target);
    ComPtr<IZFrame_I> made;
    hr = ConvertPicture(job, made);
    if (SUCCEEDED(hr)) hr = Complete(job, made.get());
    if (SUCCEEDED(hr)) result.Swap(made);
    return hr;
}

}    // namespace zck
