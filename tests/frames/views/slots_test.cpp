// The tables are contracts with hosts: the order of the slots and the identifiers must not move.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "frames/views/f_factory.h"
#include "frames/views/frame_i.h"
#include "frames/views/frame_shell.h"
#include "frames/views/frames_i.h"
#include "frames/views/sample_buffer.h"
#include "tests/support/slot.h"

namespace {

using zck::test::Slot;

TEST(Slots, QuorvexFrameContinuesThePublicTable) {
    EXPECT_EQ(3U, Slot(&IZFrame_I::FrameAVPropsGet));
    EXPECT_EQ(15U, Slot(&IZFrame_I::FrameClone));
    EXPECT_EQ(19U, Slot(&IZFrame_I::FrameRelease));
    EXPECT_EQ(20U, Slot(&IZFrame_I::FrameProcessIdGet));
    EXPECT_EQ(21U, Slot(&IZFrame_I::FrameBufferIdGet));
    EXPECT_EQ(22U, Slot(&IZFrame_I::FrameAudioCopyGet));
    EXPECT_EQ(23U, Slot(&IZFrame_I::FrameVideoCopyGet));
    EXPECT_EQ(24U, Slot(&IZFrame_I::FrameVideoOffsetGet));
    EXPECT_EQ(25U, Slot(&IZFrame_I::FrameAudioReset));
    EXPECT_EQ(26U, Slot(&IZFrame_I::FrameInfoGet));
    EXPECT_EQ(27U, Slot(&IZFrame_I::FrameInfoPtrGet));
    EXPECT_EQ(28U, Slot(&IZFrame_I::FrameDataPack));
    EXPECT_EQ(29U, Slot(&IZFrame_I::FrameDataCopyFrom));
    EXPECT_EQ(30U, Slot(&IZFrame_I::FrameAudioResetFwd));
    EXPECT_EQ(31U, Slot(&IZFrame_I::FrameAudioForward));
    EXPECT_EQ(32U, Slot(&IZFrame_I::ZFSaveToStream));
    EXPECT_EQ(33U, Slot(&IZFrame_I::ZFAddToStream));
    EXPECT_EQ(34U, Slot(&IZFrame_I::ZFLoadFromStream));
}

TEST(Slots, TessiluFrameHasATableOfItsOwn) {
    EXPECT_EQ(3U, Slot(&IZFFrame::ZFProcessIdGet));
    EXPECT_EQ(4U, Slot(&IZFFrame::ZFAVPropsGet));
    EXPECT_EQ(5U, Slot(&IZFFrame::ZFAVPropsSet));
    EXPECT_EQ(6U, Slot(&IZFFrame::ZFTimeGet));
    EXPECT_EQ(7U, Slot(&IZFFrame::ZFTimeSet));
    EXPECT_EQ(8U, Slot(&IZFFrame::ZFFlagsTest));
    EXPECT_EQ(9U, Slot(&IZFFrame::ZFInfoGet));
    EXPECT_EQ(10U, Slot(&IZFFrame::ZFAudioGetBytes));
    EXPECT_EQ(11U, Slot(&IZFFrame::ZFAudioChannelGet));
    EXPECT_EQ(12U, Slot(&IZFFrame::ZFAudioChannelsCommit));
    EXPECT_EQ(13U, Slot(&IZFFrame::ZFAudioSamplesSet));
    EXPECT_EQ(14U, Slot(&IZFFrame::ZFAudioSet));
    EXPECT_EQ(15U, Slot(&IZFFrame::ZFAudioAdd));
    EXPECT_EQ(16U, Slot(&IZFFrame::ZFAudioMix));
    EXPECT_EQ(17U, Slot(&IZFFrame::ZFAudioCopyTo));
    EXPECT_EQ(18U, Slot(&IZFFrame::ZFAudioSaveToFile));
    EXPECT_EQ(19U, Slot(&IZFFrame::ZFAudioFromFile));
    EXPECT_EQ(20U, Slot(&IZFFrame::ZFAudioGain));
    EXPECT_EQ(21U, Slot(&IZFFrame::ZFVideoGetBytes));
    EXPECT_EQ(22U, Slot(&IZFFrame::ZFVideoGetHbitmap));
    EXPECT_EQ(23U, Slot(&IZFFrame::ZFVideoSaveToFile));
    EXPECT_EQ(24U, Slot(&IZFFrame::ZFCut));
    EXPECT_EQ(25U, Slot(&IZFFrame::ZFClone));
    EXPECT_EQ(26U, Slot(&IZFFrame::ZFOverlay));
    EXPECT_EQ(27U, Slot(&IZFFrame::ZFConvert));
    EXPECT_EQ(28U, Slot(&IZFFrame::ZFResize));
    EXPECT_EQ(29U, Slot(&IZFFrame::ZFTransition));
    EXPECT_EQ(30U, Slot(&IZFFrame::ZFDataGetByIndex));
    EXPECT_EQ(32U, Slot(&IZFFrame::ZFDataSet));
    EXPECT_EQ(33U, Slot(&IZFFrame::ZFObjectGetByIndex));
    EXPECT_EQ(35U, Slot(&IZFFrame::ZFObjectSet));
    EXPECT_EQ(36U, Slot(&IZFFrame::ZFTextGetByIndex));
    EXPECT_EQ(38U, Slot(&IZFFrame::ZFTextSet));
    EXPECT_EQ(39U, Slot(&IZFFrame::ZFSaveAll));
    EXPECT_EQ(40U, Slot(&IZFFrame::ZFLoadAll));
    EXPECT_EQ(41U, Slot(&IZFFrame::ZFAsyncWait));
    EXPECT_EQ(42U, Slot(&IZFFrame::ZFPrint));
    EXPECT_EQ(43U, Slot(&IZFFrame::ZFOverlayRect));
}

TEST(Slots, FactoriesOfBothFamilies) {
    EXPECT_EQ(3U, Slot(&IZFrames_I::FrameLocal));
    EXPECT_EQ(4U, Slot(&IZFrames_I::FrameCreate));
    EXPECT_EQ(5U, Slot(&IZFrames_I::FrameCreateFromProps));
    EXPECT_EQ(8U, Slot(&IZFrames_I::FrameCreateReserved));
    EXPECT_EQ(9U, Slot(&IZFrames_I::FrameAlloc));
    EXPECT_EQ(10U, Slot(&IZFrames_I::FrameCloneConvert));
    EXPECT_EQ(11U, Slot(&IZFrames_I::FramesConvert));
    EXPECT_EQ(12U, Slot(&IZFrames_I::BufferGet));
    EXPECT_EQ(13U, Slot(&IZFrames_I::BufferReturn));
    EXPECT_EQ(14U, Slot(&IZFrames_I::FrameMakeLocal));
    EXPECT_EQ(15U, Slot(&IZFrames_I::FrameCloneObject));
    EXPECT_EQ(3U, Slot(&IZFFactory::ZFFrameLocal));
    EXPECT_EQ(4U, Slot(&IZFFactory::ZFCloneConvert));
    EXPECT_EQ(5U, Slot(&IZFFactory::ZFFrameCreate));
    EXPECT_EQ(8U, Slot(&IZFFactory::ZFFrameWrap));
}

TEST(Slots, SampleBuffer) {
    EXPECT_EQ(3U, Slot(&INSSBuffer3::GetLength));
    EXPECT_EQ(4U, Slot(&INSSBuffer3::SetLength));
    EXPECT_EQ(5U, Slot(&INSSBuffer3::GetMaxLength));
    EXPECT_EQ(6U, Slot(&INSSBuffer3::GetBuffer));
    EXPECT_EQ(7U, Slot(&INSSBuffer3::GetBufferAndLength));
    EXPECT_EQ(8U, Slot(&INSSBuffer3::GetSampleProperties));
    EXPECT_EQ(9U, Slot(&INSSBuffer3::SetSampleProperties));
    EXPECT_EQ(10U, Slot(&INSSBuffer3::SetProperty));
    EXPECT_EQ(11U, Slot(&INSSBuffer3::GetProperty));
}

TEST(Slots, IdentifiersDiffer) {
    std::set<std::string> seen;
    const IID *all[] = {&ZIidOf<IUnknown>(),   &ZIidOf<IZFrame>(),     &ZIidOf<IZFrame_I>(),  &ZIidOf<IZFFrame>(),
                        &ZIidOf<IZFrames>(),   &ZIidOf<IZFrames_I>(),  &ZIidOf<IZFFactory>(), &ZIidOf<IZFrameShell>(),
                        &ZIidOf<INSSBuffer>(), &ZIidOf<INSSBuffer2>(), &ZIidOf<INSSBuffer3>()};
    for (const IID *id : all) seen.emplace(reinterpret_cast<const char *>(id), sizeof(IID));
    EXPECT_EQ(std::size(all), seen.size());
}

TEST(Slots, SampleBufferHasTheSystemsIdentifier) {
    EXPECT_EQ(0xC87CEAAFU, ZIidOf<INSSBuffer3>().Data1);
    EXPECT_EQ(0xE1CD3524U, ZIidOf<INSSBuffer>().Data1);
    EXPECT_EQ(0x4F528693U, ZIidOf<INSSBuffer2>().Data1);
}

}    // namespace
