#include "tests/conformance/frame_fixture.h"

#include <random>

#include "frames/memory/blob_holder.h"

namespace conformance {

ComPtr<IUnknown> PlainObject() {
    ComPtr<IUnknown> object;
    object.Attach(new zck::CBLOBHolder<zck::CNewAlloc>);
    return object;
}

ComPtr<IZFrame> Frames::Make(Z_VID_PROPS p, uint32_t seed) {
    std::mt19937 random(seed);
    ComPtr<IZFrame> frame;
    Bytes pixels(static_cast<size_t>(BufferSize(&p)));
    for (uint8_t &b : pixels) b = static_cast<uint8_t>(random());
    EXPECT_EQ(m_factory->FrameCreateFromProps(&p, AddressOf(pixels.data()), frame.Put(), nullptr), S_OK) << Words(p);
    // What was asked for, not what normalising made of it.
    Z_AV_PROPS props = {};
    props.vidProps = p;
    if (frame) {
        EXPECT_EQ(frame->FrameAVPropsSet(&props), S_OK);
    }
    return frame;
}

ComPtr<IZFrame> Frames::MakeRich(Z_VID_PROPS p) {
    ComPtr<IZFrame> frame = Make(p);
    Z_AV_PROPS props = {};
    props.vidProps = p;
    props.audProps = {2, 48000, 16, 5};
    props.ancData.eFlags = eZAF_AL_Valid;
    props.ancData.audOriginal.arrVUMeter[3] = 0.5F;
    props.ancData.audOutput.nTracksSplitBit = 9;
    props.bLocked = 3;
    EXPECT_EQ(frame->FrameAVPropsSet(&props), S_OK);
    Z_TIME time = {};
    time.rtStartTime = 400000;
    time.rtEndTime = 800000;
    time.tcFrame.nSeconds = 7;
    time.eFFlags = eZFF_Net_Break_BI;
    EXPECT_EQ(frame->FrameTimeSet(&time), S_OK);
    Bytes sound(400);
    for (size_t i = 0; i < sound.size(); ++i) sound[i] = static_cast<uint8_t>(i * 7);
    const ComPtr<IZFrame_I> view = QueryFor<IZFrame_I>(frame.get());
    EXPECT_EQ(view->FrameAudioReset(400, AddressOf(sound.data())), S_OK);
    const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(frame.get());
    const char data[] = "abcdef";
    EXPECT_EQ(wide->ZFDataSet(TextOf("C608").get(), 6, AddressOf(data)), S_OK);
    EXPECT_EQ(wide->ZFDataSet(TextOf("LongName").get(), 3, AddressOf(data)), S_OK);
    EXPECT_EQ(wide->ZFDataSet(TextOf("INLN").get(), 0, 5), S_OK);
    EXPECT_EQ(wide->ZFTextSet(TextOf("note").get(), TextOf("__zf_remove__").get()), S_OK);
    EXPECT_EQ(wide->ZFObjectSet(TextOf("thing").get(), PlainObject().get()), S_OK);
    return frame;
}

ComPtr<IZFrame> Frames::Wrap(Z_VID_PROPS p, void *pixels, int32_t size, IUnknown *keeper) {
    ComPtr<IZFFrame> frame;
    EXPECT_EQ(m_wide->ZFFrameWrap(&p, size, AddressOf(pixels), keeper, frame.Put()), S_OK);
    return QueryFor<IZFrame>(frame.get());
}

}    // namespace conformance
