// What a conversion reads of a frame, all of one moment.
#pragma once

#include "frames/views/frames_i.h"
#include "imaging/engines/convert_frame.h"
#include "platform/com_ptr.h"

namespace zck {

struct FramePicture {
    Z_TIME time = {};
    Z_AV_PROPS props = {};
    uint8_t *video = nullptr;
    int32_t videoSize = 0;
    int64_t audio = 0;
    int32_t audioSize = 0;

    const Z_VID_PROPS &Record() const { return props.vidProps; }
    EngineSource Source() const { return {video, videoSize, &props.vidProps}; }
    EngineTarget Target() const { return {video, nullptr, nullptr, videoSize, &props.vidProps}; }

    /// There are pixels, all that the record states. One without a size states none.
    bool Whole() const;
};

HRESULT FramePictureGet(IZFrame_I *frame, FramePicture &picture);

/// What the pixels of a new frame are.
enum class NewPixels {
    kZero,
    kUnwritten,    ///< may be those of an earlier frame: for whoever writes them all
};

/// A new frame of pixels as a record states them, with that record alone. 0x80040248 for a record of no bytes.
HRESULT FrameForRecord(IZFrames_I *factory, const Z_VID_PROPS &record, NewPixels pixels, ComPtr<IZFrame_I> &frame);

}    // namespace zck
