#include "hosts/zkey/frame_sound.h"

#include "zchromakey/module.h"

namespace zkey {

Ref<IZFrame> EmptyFrame() {
    Ref<IZFrames> frames;
    Ref<IZFrame> frame;
    HRESULT status = ZFramesCreate(ZIidOf<IZFrames>(), frames.PutVoid());
    if (SUCCEEDED(status)) status = frames->FrameCreate(0, nullptr, frame.Put());
    if (FAILED(status)) Fail("cannot create a frame: " + StatusText(status));
    return frame;
}

void GiveSound(IZFrame *frame, const Sound &sound) {
    if (sound.samples.empty()) return;
    if (sound.samples.size() > INT32_MAX) Fail("the sound is too large: a frame has 2 GB at most");
    Z_AUD_PROPS props = sound.props;
    const auto address = static_cast<int64_t>(reinterpret_cast<intptr_t>(sound.samples.data()));
    const HRESULT status = WideView<IZFFrame>(frame)->ZFAudioSet(&props, static_cast<int32_t>(sound.samples.size()), address);
    if (FAILED(status)) Fail("cannot give a frame its sound: " + StatusText(status));
}

SoundBytes SoundOf(IZFrame *frame) {
    int32_t size = 0;
    int64_t address = 0;
    const HRESULT status = WideView<IZFFrame>(frame)->ZFAudioGetBytes(&size, &address);
    if (FAILED(status) || size <= 0 || address == 0) return {};
    return {reinterpret_cast<const uint8_t *>(static_cast<intptr_t>(address)), static_cast<std::size_t>(size)};
}

}    // namespace zkey
