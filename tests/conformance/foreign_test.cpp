// Frames of others: of another family, of another process.
#include <cstring>

#include "platform/process.h"
#include "tests/conformance/foreign_frame.h"
#include "tests/conformance/frame_fixture.h"

namespace conformance {
namespace {

class Foreign : public Frames {
protected:
    void SetUp() override {
        Frames::SetUp();
        m_real = MakeRich(Picture(eZFCC_UYVY, 16, 8));
    }
    // A clone by the factory, which is how a foreign frame meets ours.
    ComPtr<IZFrame> Clone(ForeignFrame &frame, int32_t type, eZFCC fcc = eZFCC_Default, HRESULT want = S_OK) {
        ComPtr<IZFrame_I> clone;
        EXPECT_EQ(m_factory->FrameCloneConvert(&frame, clone.Put(), Bits({type}), fcc), want) << type;
        return QueryFor<IZFrame>(clone.get());
    }
    ComPtr<IZFrame> m_real;
};

TEST_F(Foreign, APublicFrameOnlyCannotBeCloned) {
    ForeignFrame frame(m_real, Answers::Frame);
    Clone(frame, 2, eZFCC_Default, E_NOINTERFACE);
    Clone(frame, 1, eZFCC_RGB32, E_NOINTERFACE);
    ComPtr<IZFrame_I> out;
    EXPECT_EQ(m_factory->FrameMakeLocal(&frame, out.Put(), 0), E_NOINTERFACE);
    EXPECT_EQ(frame.m_refs, 1U);
}

TEST_F(Foreign, OfThisProcessPixelsAreTakenByAddress) {
    ForeignFrame frame(m_real, Answers::FrameI);
    {
        const ComPtr<IZFrame> reference = Clone(frame, 18);
        EXPECT_EQ(Video(reference).address, Video(m_real).address);
        EXPECT_EQ(frame.m_refs, 2U);
        EXPECT_EQ(Audio(reference).bytes(), Audio(m_real).bytes());
        const ComPtr<IZFrame> copy = Clone(frame, 1);
        EXPECT_EQ(Video(copy).bytes(), Video(m_real).bytes());
        EXPECT_EQ(frame.m_refs, 2U);
        const ComPtr<IZFrame> converted = Clone(frame, 2, eZFCC_YUY2);
        EXPECT_EQ(Video(converted).data()[0], Video(m_real).data()[1]);
        EXPECT_EQ(frame.m_refs, 2U);
        ComPtr<IZFrame_I> local;
        ASSERT_EQ(m_factory->FrameMakeLocal(&frame, local.Put(), 0), S_OK);
        EXPECT_EQ(local.get(), &frame);
    }
    EXPECT_EQ(frame.m_refs, 1U);
}

TEST_F(Foreign, OfAnotherProcessTheSectionIsOpened) {
    ForeignFrame frame(m_real, Answers::FrameI);
    frame.m_process = zck::CurrentProcessId() + 1;
    {
        const ComPtr<IZFrame> reference = Clone(frame, 18);
        ASSERT_TRUE(reference);
        EXPECT_NE(Video(reference).address, Video(m_real).address);    // another view of the same memory
        EXPECT_EQ(Video(reference).bytes(), Video(m_real).bytes());
        Video(m_real).data()[5] ^= 0xFF;
        EXPECT_EQ(Video(reference).bytes(), Video(m_real).bytes());
        EXPECT_EQ(frame.m_refs, 2U);    // so that the section is not used for something else
        EXPECT_EQ(Audio(reference).bytes(), Audio(m_real).bytes());
        EXPECT_EQ(Time(reference).rtEndTime, 800000);
        EXPECT_EQ(Props(reference).bLocked, 3);
        int64_t id = 0, own = 0;
        EXPECT_EQ(QueryFor<IZFrame_I>(reference.get())->FrameBufferIdGet(&id), S_OK);
        EXPECT_EQ(QueryFor<IZFrame_I>(m_real.get())->FrameBufferIdGet(&own), S_OK);
        EXPECT_EQ(id, own);

        const ComPtr<IZFrame> copy = Clone(frame, 1);
        EXPECT_EQ(Video(copy).bytes(), Video(m_real).bytes());
        Video(m_real).data()[6] ^= 0xFF;
        EXPECT_NE(Video(copy).bytes(), Video(m_real).bytes());
        EXPECT_EQ(Audio(copy).size, 0);
        EXPECT_EQ(frame.m_refs, 2U);

        const ComPtr<IZFrame> converted = Clone(frame, 2, eZFCC_YUY2);
        EXPECT_EQ(Video(converted).data()[0], Video(m_real).data()[1]);
        int32_t size = 0;
        int64_t at = 0;
        EXPECT_EQ(QueryFor<IZFFrame>(converted.get())->ZFDataGet(TextOf("C608").get(), &size, &at), S_OK);

        ComPtr<IZFrame_I> local;
        ASSERT_EQ(m_factory->FrameMakeLocal(&frame, local.Put(), 0), S_OK);
        EXPECT_NE(local.get(), &frame);
        EXPECT_EQ(Video(local).bytes(), Video(m_real).bytes());
    }
    EXPECT_EQ(frame.m_refs, 1U);
    // The opened view was closed, not pooled: frames of the size do not see it.
    const Bytes pixels = Video(m_real).bytes();
    for (uint32_t i = 0; i < 6; ++i) Make(Picture(eZFCC_UYVY, 16, 8), 50 + i);
    EXPECT_EQ(Video(m_real).bytes(), pixels);
}

TEST_F(Foreign, OfAnotherProcessACutKeepsItsPlace) {
    tagRECT rect = {4, 2, 12, 7};
    ComPtr<IZFrame> cut;
    ASSERT_EQ(m_real->FrameCut(0, &rect, cut.Put()), S_OK);
    ForeignFrame frame(cut, Answers::FrameI);
    frame.m_process = zck::CurrentProcessId() + 1;
    for (const int32_t type : {1, 2}) {
        const ComPtr<IZFrame> clone = Clone(frame, type);
        ASSERT_TRUE(clone);
        EXPECT_EQ(Video(clone).data()[0], Video(cut).data()[0]) << type;
        EXPECT_EQ(std::memcmp(Video(clone).data(), Video(cut).data(), 4 * 32 + 16), 0) << type;
        EXPECT_EQ(Words(Props(clone).vidProps), Words(Props(cut).vidProps));
    }
}

TEST_F(Foreign, ASectionThatIsGone) {
    ForeignFrame frame(m_real, Answers::FrameI);
    frame.m_process = zck::CurrentProcessId() + 1;
    frame.m_section = 0x7654321;
    Clone(frame, 2, eZFCC_Default, static_cast<HRESULT>(0x80070002));
    EXPECT_EQ(frame.m_refs, 1U);
    // Without the video nobody asks for it.
    EXPECT_EQ(Audio(Clone(frame, 16)).size, 400);
}

}    // namespace
}    // namespace conformance
