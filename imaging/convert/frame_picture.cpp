#include "imaging/convert/frame_picture.h"

#include <algorithm>
#include <cstdint>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "frames/views/frame_shell.h"
#include "imaging/convert/convert_bits.h"
#include "platform/status.h"

namespace zck {

bool FramePicture::Whole() const {
    Z_VID_PROPS record = Record();
    if (video == nullptr) return false;
    if (RecordComplete(record) != S_OK) return true;
    if (!MemoryHolds(record, videoSize)) return false;
    return !IsPlanarFormat(record.fccType) || record.nRowBytes >= record.nWidth;
}

HRESULT FramePictureGet(IZFrame_I *frame, FramePicture &picture) {
    picture = {};
    int64_t video = 0;
    const HRESULT hr =
        frame->FrameInfoPtrGet(&picture.time, &picture.props, &picture.audioSize, &picture.audio, &picture.videoSize, &video);
    picture.video = reinterpret_cast<uint8_t *>(static_cast<uintptr_t>(video));
    picture.videoSize = picture.video != nullptr ? std::max(picture.videoSize, 0) : 0;
    return hr;
}

HRESULT FrameForRecord(IZFrames_I *factory, const Z_VID_PROPS &record, NewPixels pixels, ComPtr<IZFrame_I> &frame) {
    const int32_t size = FrameBufferSize(&record);
    if (size < 1) return kVfwEInvalidMediaType;
    const auto maker = pixels == NewPixels::kUnwritten ? QueryFor<IZFrameShell>(factory) : ComPtr<IZFrameShell>();
    const HRESULT hr = maker ? maker->UnwrittenAlloc(size, frame.Put()) : factory->FrameAlloc(size, 0, nullptr, frame.Put());
    if (FAILED(hr)) return hr;
    Z_AV_PROPS props = {};
    props.vidProps = record;
    return frame->FrameAVPropsSet(&props);
}

}    // namespace zck
