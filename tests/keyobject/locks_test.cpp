// Threads on one key object: who waits for whom, and what readers see.
#include <atomic>
#include <thread>

#include "keyobject/key_adjust.h"
#include "platform/sync.h"
#include "tests/keyobject/key_fixture.h"
#include "tests/keyobject/own_frame.h"

namespace zck::test {
namespace {

class Locks : public KeyTest {
protected:
    static OwnFrameState Own() {
        OwnFrameState state;
        state.props = PropsOf(32, 16);
        state.bytes = BytesOf(32, 16, HalfGreen);
        return state;
    }
    /// A reference whose view stands still where its pixels are asked for, until `m_go`.
    OwnFrameState Waiting() {
        OwnFrameState state = Own();
        state.cloneChange = [this](OwnFrameState &clone) {
            clone.onBytes = [this] {
                if (m_armed.exchange(false)) {
                    m_inside.Set();
                    m_go.Wait(kInfinite);
                }
            };
        };
        return state;
    }
    void SetWaiting() {
        ASSERT_EQ(m_key->KeyFrameSet(OwnFrame::Create(Waiting()).get(), nullptr), S_OK);
        m_armed = true;
    }

    std::atomic<bool> m_armed{false};
    Event m_inside{true};
    Event m_go{true};
};

// A detection in the midst, an edit that waits for it, and everybody else. If one of the calls waited for the scan, the test
// would not end.
TEST_F(Locks, NobodyButAnotherEditWaitsForADetection) {
    SetWaiting();
    std::thread detecting([&] {
        ComPtr<IUnknown> out;
        EXPECT_EQ(m_key->KeyDetect(Of("blocks=4").get(), out.Put()), S_OK);
    });
    m_inside.Wait(kInfinite);
    Event resetting(true);
    std::thread reset([&] {
        ComPtr<IUnknown> out;
        resetting.Set();
        EXPECT_EQ(m_key->KeyReset(out.Put()), S_OK);
    });
    resetting.Wait(kInfinite);
    EXPECT_EQ(m_key->KeyFrameSet(HalfGreenFrame().get(), nullptr), S_OK);
    EXPECT_EQ(m_key->KeyFrameGet(m_out.Put(), nullptr), S_OK);
    EXPECT_TRUE(m_out);
    EXPECT_EQ(Raw().nKeysUsed, 0);
    EXPECT_EQ(Get(eCKA_Transparent), 0.1);
    m_go.Set();
    detecting.join();
    reset.join();
    EXPECT_EQ(Raw().nKeysUsed, 0);
    // The reset came second: a step back and forward is what the detection left.
    ASSERT_EQ(Back(), S_OK);
    ASSERT_EQ(Forward(), S_OK);
    EXPECT_EQ(Raw().nKeysUsed, 1);
}

TEST_F(Locks, NobodyButAnotherEditWaitsForAPreview) {
    SetWaiting();
    m_armed = false;
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    m_armed = true;
    std::thread setting([&] {
        ComPtr<IUnknown> out;
        EXPECT_EQ(m_key->KeyAdjustSet(eCKA_Power, 0.5, out.Put()), S_OK);
    });
    m_inside.Wait(kInfinite);
    // The edit is done, its preview is not.
    EXPECT_EQ(Get(eCKA_Power), 0.5);
    EXPECT_EQ(m_key->KeyFrameSet(nullptr, HalfGreenFrame().get()), S_OK);
    EXPECT_EQ(m_key->KeyFrameGet(m_out.Put(), nullptr), S_OK);
    m_go.Set();
    setting.join();
}

// A working image is of the view from which it was built, also when the reference changes meanwhile.
TEST_F(Locks, ADetectionKeepsThePictureWithWhichItBegan) {
    SetWaiting();
    std::thread detecting([&] {
        ComPtr<IUnknown> out;
        EXPECT_EQ(m_key->KeyDetect(Of("blocks=4 type=RGB").get(), out.Put()), S_OK);
    });
    m_inside.Wait(kInfinite);
    const ComPtr<IZFrame> blue = Frame(32, 16, [](int, int) { return kBlue; });
    ASSERT_EQ(m_key->KeyFrameSet(blue.get(), nullptr), S_OK);
    m_go.Set();
    detecting.join();
    EXPECT_EQ(Raw().arrKeys[0].nValue, GreenKey().arrKeys[0].nValue);
    ASSERT_EQ(Add(1, 1, "max_keys=2 type=RGB"), S_OK);
    EXPECT_EQ(Raw().arrKeys[1].nValue, static_cast<int32_t>(0xFFC02010));
}

// The three that stood still when one lock was taken within the other, in turns; readers see no state between.
TEST_F(Locks, DetectionResetAndFrameSetTogether) {
    constexpr int kRounds = 60;
    SetHalfGreen();
    std::atomic<int> running{3};
    const auto thread = [&](auto round) {
        return std::thread([&running, round] {
            for (int i = 0; i < kRounds; ++i) round(i);
            --running;
        });
    };
    std::thread detecting = thread([&](int i) {
        ComPtr<IUnknown> out;
        EXPECT_EQ(m_key->KeyDetect(Of(i % 2 == 0 ? "blocks=4" : "blocks=4 show_blocks=false").get(), out.Put()), S_OK);
    });
    std::thread editing = thread([&](int i) {
        ComPtr<IUnknown> out;
        EXPECT_GE(i % 2 == 0 ? m_key->KeyReset(out.Put()) : m_key->KeyAdjustSet(eCKA_MinTransparent, 0.25, out.Put()), 0);
    });
    std::thread framing = thread([&](int i) {
        const ComPtr<IZFrame> frame = Frame(32, 16 + i % 3, HalfGreen);
        EXPECT_EQ(m_key->KeyFrameSet(frame.get(), i % 2 == 0 ? frame.get() : nullptr), S_OK);
    });
    while (running > 0) {
        CHROMA_KEY_RAW key = {};
        CK_ADJUST adjust = {};
        ASSERT_EQ(m_key->KeyRawGet(&key, &adjust), S_OK);
        // A reset leaves zeros; every other state has the integers of its adjustment.
        const int32_t told = AdjustRounded(255.0 * adjust.dblMinTransparent);
        EXPECT_TRUE(key.nMinTransparent == 0 || key.nMinTransparent == told) << key.nMinTransparent;
        ComPtr<IUnknown> out;
        EXPECT_EQ(m_key->KeyFrameGet(out.Put(), nullptr), S_OK);
        EXPECT_TRUE(out);
    }
    detecting.join();
    editing.join();
    framing.join();
}

}    // namespace
}    // namespace zck::test
