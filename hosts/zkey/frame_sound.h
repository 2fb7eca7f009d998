// Sound that a frame carries, at the border of the library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/plugin_door.h"
#include "hosts/zkey/ref.h"
#include "zchromakey/f_frame.h"
#include "zchromakey/frames.h"

namespace zkey {

/// Interleaved samples with their description.
struct Sound {
    Z_AUD_PROPS props{};
    std::vector<uint8_t> samples;
};

/// A frame without a picture.
Ref<IZFrame> EmptyFrame();

/// A wide view of one of the library's frames.
template <class Wide>
Ref<Wide> WideView(IZFrame *frame) {
    Ref<Wide> view;
    const HRESULT status = frame->QueryInterface(ZIidOf<Wide>(), view.PutVoid());
    if (FAILED(status)) Fail("cannot use the library's frames: " + StatusText(status));
    return view;
}

/// Gives a frame its sound. The frame takes a copy, and measures it; without samples it stays as it is.
void GiveSound(IZFrame *frame, const Sound &sound);

/// Bytes in a frame's memory, good while nobody changes its sound.
struct SoundBytes {
    const uint8_t *data = nullptr;
    std::size_t size = 0;
};
SoundBytes SoundOf(IZFrame *frame);

}    // namespace zkey
