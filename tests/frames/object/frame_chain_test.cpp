// Clones of clones of clones: however long the chain, it is as cheap as its first link.
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

constexpr int kLong = 20000;

class FrameChains : public FrameTest {
protected:
    void SetUp() override {
        FrameTest::SetUp();
        m_root = SoundFrame(Record(eZFCC_UYVY, 64, 48));
        EXPECT_EQ(S_OK, m_root->FrameBufferIdGet(&m_section));
    }
    void TearDown() override {
        m_root.Reset();
        FrameTest::TearDown();
    }

    /// The next link by one family's clone, the other's, or a cut of the whole picture.
    ComPtr<IZFrame> Next(const ComPtr<IZFrame> &frame, int i) {
        ComPtr<IZFrame> next;
        if (i % 3 == 0) {
            EXPECT_EQ(S_OK, frame->FrameClone(next.Put(), eZFC_Reference, eZFCC_Default));
        } else if (i % 3 == 1) {
            ComPtr<IZFFrame> clone;
            EXPECT_EQ(S_OK, As<IZFFrame>(frame)->ZFClone(clone.Put(), eZFC_Reference, eZFCC_Default));
            next = As<IZFrame>(clone);
        } else {
            EXPECT_EQ(S_OK, frame->FrameCut(0, nullptr, next.Put()));
        }
        return next;
    }

    void ExpectTheRoots(const ComPtr<IZFrame> &frame) {
        EXPECT_EQ(Pattern(64 * 48 * 2), VideoOf(frame).Copy());
        int64_t section = 0;
        EXPECT_EQ(S_OK, As<IZFrame_I>(frame)->FrameBufferIdGet(&section));
        EXPECT_EQ(m_section, section);
        ZF_INFO info = {};
        EXPECT_EQ(S_OK, As<IZFFrame>(frame)->ZFInfoGet(&info));
        EXPECT_EQ(m_section, info.llSectionId);
        int32_t offset = -1;
        EXPECT_EQ(S_OK, As<IZFrame_I>(frame)->FrameVideoOffsetGet(&offset));
        EXPECT_EQ(0, offset);
    }

    ComPtr<IZFrame_I> m_root;
    int64_t m_section = 0;
};

TEST_F(FrameChains, ALinkKeepsTheFirstFrameAlive) {
    ComPtr<IZFrame> last = Clone(m_root.get(), eZFC_Reference);
    m_root.Reset();
    const int32_t objects = ModuleCount::Get();
    for (int i = 0; i < 20; ++i) {
        last = Next(last, i);
        EXPECT_EQ(objects, ModuleCount::Get()) << "the links between are gone";
    }
    ExpectTheRoots(last);
}

TEST_F(FrameChains, AFreezeFrameOfAnHour) {
    ComPtr<IZFrame> last = As<IZFrame>(m_root);
    m_root.Reset();
    for (int i = 0; i < 60 * 60 * 25; ++i) last = Next(last, i);
    ExpectTheRoots(last);
}

TEST_F(FrameChains, LongChainsAreAskedAndReleasedInAnyOrder) {
    std::vector<ComPtr<IZFrame>> chain{As<IZFrame>(m_root)};
    m_root.Reset();
    for (int i = 0; i < kLong; ++i) chain.push_back(Next(chain.back(), i));
    ExpectTheRoots(chain.back());
    chain.erase(chain.begin(), chain.end() - 1);
    ExpectTheRoots(chain.back());
}

TEST_F(FrameChains, KeepersOfOutsideMemoryPassOn) {
    const auto factory = As<IZFFactory>(m_factory);
    std::vector<uint8_t> memory = Pattern(64 * 48 * 2);
    Z_VID_PROPS props = Record(eZFCC_UYVY, 64, 48);
    ComPtr<IZFrame> keeper = Clone(m_root.get(), eZFC_Props);
    ComPtr<IZFFrame> wrapped;
    ASSERT_EQ(S_OK, factory->ZFFrameWrap(&props, static_cast<int32_t>(memory.size()), AddressIn(memory.data()), keeper.get(),
                                         wrapped.Put()));
    ComPtr<IZFrame> last = As<IZFrame>(wrapped);
    wrapped.Reset();
    for (int i = 0; i < 10; ++i) last = Next(last, i);
    EXPECT_EQ(memory, VideoOf(last).Copy());
    const int32_t objects = ModuleCount::Get();
    keeper.Reset();
    EXPECT_EQ(objects, ModuleCount::Get()) << "the last link holds it";
    last.Reset();
    EXPECT_EQ(objects - 2, ModuleCount::Get());
}

}    // namespace
}    // namespace zck::test
