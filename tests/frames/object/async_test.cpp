// While somebody fills a frame, readers of its pixels wait in one family and do not in the other.
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>

#include "frames/object/frame.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

constexpr auto kShort = std::chrono::milliseconds(40);

/// Another thread holds the frame as if it filled it.
class Filling {
public:
    explicit Filling(CriticalSection &section) {
        m_thread = std::thread([this, &section] {
            const std::lock_guard lock(section);
            m_holds = true;
            while (!m_ends) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        });
        while (!m_holds) std::this_thread::yield();
    }
    ~Filling() { End(); }
    void End() {
        m_ends = true;
        if (m_thread.joinable()) m_thread.join();
    }

private:
    std::atomic<bool> m_holds{false};
    std::atomic<bool> m_ends{false};
    std::thread m_thread;
};

class AsyncFill : public FrameTest {
protected:
    void SetUp() override {
        FrameTest::SetUp();
        m_frame = Frame(Record(eZFCC_UYVY, 64, 48));
        m_tessilu = As<IZFFrame>(m_frame);
    }
    void TearDown() override {
        m_tessilu.Reset();
        m_frame.Reset();
        FrameTest::TearDown();
    }

    bool Waits(const std::function<void()> &work) {
        Filling filling(As<CCoZFrame2>(m_frame)->AsyncSection());
        std::atomic<bool> done{false};
        std::thread reader([&] {
            work();
            done = true;
        });
        std::this_thread::sleep_for(kShort);
        const bool waits = !done;
        filling.End();
        reader.join();
        return waits;
    }

    HRESULT CloneOf(int32_t type, eZFCC fcc) {
        ComPtr<IZFFrame> clone;
        return m_tessilu->ZFClone(clone.Put(), static_cast<eZFrameClone>(type), fcc);
    }

    ComPtr<IZFrame_I> m_frame;
    ComPtr<IZFFrame> m_tessilu;
};

TEST_F(AsyncFill, ReadersOfPixelsWait) {
    EXPECT_TRUE(Waits([&] { m_tessilu->ZFAsyncWait(); }));
    EXPECT_TRUE(Waits([&] { m_tessilu->ZFVideoGetBytes(nullptr, nullptr); }));
    EXPECT_TRUE(Waits([&] {
        int64_t bitmap = 0;
        EXPECT_EQ(S_OK, m_tessilu->ZFVideoGetHbitmap(&bitmap));
        DeleteObject(reinterpret_cast<HBITMAP>(static_cast<uintptr_t>(bitmap)));
    }));
    EXPECT_TRUE(Waits([&] { m_tessilu->ZFVideoSaveToFile(nullptr); }));
    EXPECT_TRUE(Waits([&] { EXPECT_EQ(S_OK, CloneOf(eZFC_Video, eZFCC_Default)); }));
    EXPECT_TRUE(Waits([&] { EXPECT_EQ(S_OK, CloneOf(eZFC_VideoRef, eZFCC_Default)); }));
    EXPECT_TRUE(Waits([&] { EXPECT_EQ(S_OK, CloneOf(eZFC_VideoRef, eZFCC_UYVY)); }));
    // A conversion reads pixels whatever the type says; so, to be sure, does another name for the format.
    EXPECT_TRUE(Waits([&] { EXPECT_EQ(S_OK, CloneOf(eZFC_Audio, eZFCC_ARGB32)); }));
    EXPECT_TRUE(Waits([&] { EXPECT_EQ(S_OK, CloneOf(0, eZFCC_HDYC)); }));
}

// An operation that waited here would wait for ever: the frame is filled until they have all returned.
TEST_F(AsyncFill, OthersDoNot) {
    const Filling filling(As<CCoZFrame2>(m_frame)->AsyncSection());
    EXPECT_EQ(S_OK, CloneOf(eZFC_Audio, eZFCC_Default));
    EXPECT_EQ(S_OK, CloneOf(0, eZFCC_UYVY));
    ZF_INFO info = {};
    EXPECT_EQ(S_OK, m_tessilu->ZFInfoGet(&info));
    Z_AV_PROPS props = {};
    EXPECT_EQ(S_OK, m_tessilu->ZFAVPropsGet(&props, nullptr));
    EXPECT_EQ(S_OK, m_tessilu->ZFAudioGetBytes(nullptr, nullptr));
    EXPECT_EQ(64 * 48 * 2, VideoOf(m_frame).size);
    EXPECT_TRUE(Clone(m_frame.get(), eZFC_Full));
    EXPECT_TRUE(Clone(m_frame.get(), eZFC_Full, eZFCC_ARGB32));
    ComPtr<IZFFrame> cut;
    EXPECT_EQ(S_OK, m_tessilu->ZFCut(0, nullptr, cut.Put()));
}

}    // namespace
}    // namespace zck::test
