#include <cstring>
#include <thread>

#include "tests/keying/plugin/keyer_test.h"

namespace zck {
namespace {

class MediaPath : public KeyerTest {};

TEST_F(MediaPath, EachFrameComesOneCallLate) {
    SetKey(eCKT_RGB);
    const ComPtr<IZFrame> first = Frame();
    ComPtr<IZFrame> out;
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, first.get(), out.Put()), S_FALSE);
    EXPECT_FALSE(out);
    AwaitOutput();
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame(eZFCC_RGB32, 32, 16).get(), out.Put()), S_OK);
    ASSERT_TRUE(out);
    Z_AV_PROPS props{};
    ASSERT_EQ(out->FrameAVPropsGet(&props), S_OK);
    EXPECT_EQ(props.vidProps.nWidth, kWidth);
    EXPECT_EQ(props.vidProps.fccType, eZFCC_ARGB32);
    const auto pixels = Pixels(out.get());
    EXPECT_EQ(At(pixels, 3, 5), 0u);
    EXPECT_EQ(At(pixels, 60, 5), kSkin);
}

TEST_F(MediaPath, TheInputFrameIsNeverChanged) {
    Set("output.thread", "false");
    SetKey(eCKT_RGB);
    const ComPtr<IZFrame> in = Frame(eZFCC_ARGB32);
    const auto before = Pixels(in.get());
    ComPtr<IZFrame> out;
    ASSERT_EQ(m_plugin->OnMediaReceive(0, nullptr, in.get(), out.Put()), S_OK);
    EXPECT_EQ(Pixels(in.get()), before);
    EXPECT_NE(Pixels(out.get()), before);
}

TEST_F(MediaPath, WithoutAKeyThePlainCloneLeaves) {
    Set("output.thread", "false");
    for (const eCK_Type type : {eCKT_Alpha, eCKT_Auto}) {
        SetKey(type);
        const ComPtr<IZFrame> in = Frame();
        ComPtr<IZFrame> out;
        ASSERT_EQ(m_plugin->OnMediaReceive(0, nullptr, in.get(), out.Put()), S_OK);
        EXPECT_EQ(Pixels(out.get()), Pixels(in.get()));
        Z_AV_PROPS props{};
        out->FrameAVPropsGet(&props);
        EXPECT_EQ(props.vidProps.fccType, eZFCC_ARGB32);
    }
}

TEST_F(MediaPath, ASwitchedOffKeyRefusesTheFrameButKeepsIt) {
    SetKey(eCKT_None);
    ComPtr<IZKey> key;
    EXPECT_EQ(m_key->KeyGet(nullptr, key.Put(), nullptr), kVfwEWrongState);
    Set("output.thread", "false");
    ComPtr<IZFrame> out;
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), E_INVALIDARG);
    EXPECT_FALSE(out);
    // There is a frame, and no class of key objects in this program.
    EXPECT_EQ(m_key->KeyGet(nullptr, key.Put(), nullptr), CLASS_E_CLASSNOTAVAILABLE);
    Set("output.thread", "true");
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_FALSE);
    AwaitOutput();
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_FALSE);
    EXPECT_FALSE(out);
}

TEST_F(MediaPath, BordersStayUnkeyedButConverted) {
    Set("output.thread", "false");
    Set("keying.borders", "10 4");
    SetKey(eCKT_RGB);
    ComPtr<IZFrame> out;
    ASSERT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_OK);
    const auto pixels = Pixels(out.get());
    EXPECT_EQ(At(pixels, 15, 10), kGreen);
    EXPECT_EQ(At(pixels, 16, 10), 0u);
    EXPECT_EQ(At(pixels, 20, 3), kGreen);
    EXPECT_EQ(At(pixels, 20, 4), 0u);
    EXPECT_EQ(At(pixels, 20, kHeight - 5), 0u);
    EXPECT_EQ(At(pixels, 20, kHeight - 4), kGreen);
}

TEST_F(MediaPath, BordersWithoutANumberKeyTheWholeFrame) {
    Set("output.thread", "false");
    Set("keying.borders", " ; ");
    SetKey(eCKT_RGB);
    ComPtr<IZFrame> out;
    ASSERT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_OK);
    EXPECT_EQ(At(Pixels(out.get()), 0, 0), 0u);
}

TEST_F(MediaPath, EveryThreadCountKeysTheFrameAndAbsurdOnesAreRefused) {
    Set("output.thread", "false");
    SetKey(eCKT_RGB);
    std::vector<uint32_t> expected;
    for (const char *count : {"1", "2", "4", "8", "16", "20"}) {
        Set("process.threads", count);
        ComPtr<IZFrame> out;
        ASSERT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_OK) << count;
        if (expected.empty()) expected = Pixels(out.get());
        EXPECT_EQ(Pixels(out.get()), expected) << count;
    }
    for (const char *count : {"0", "-3", "many"}) {
        Set("process.threads", count);
        ComPtr<IZFrame> out;
        EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), E_INVALIDARG) << count;
        EXPECT_FALSE(out);
    }
}

TEST_F(MediaPath, WithoutItsPropertyTheThreadsAreSixAndNotTwo) {
    Set("output.thread", "false");
    SetKey(eCKT_RGB);
    // A frame lower than the number of slices is not keyed.
    const auto keyed = [&](int height) {
        ComPtr<IZFrame> out;
        EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame(eZFCC_RGB32, kWidth, height).get(), out.Put()), S_OK);
        return At(Pixels(out.get()), 3, 1) == 0;
    };
    EXPECT_TRUE(keyed(2));
    EXPECT_TRUE(keyed(5));
    ASSERT_EQ(m_props->PropsRemove(Bstr(TextFromUtf8("process.threads")).get()), S_OK);
    EXPECT_FALSE(keyed(5));
    EXPECT_TRUE(keyed(6));
    // A property that has grown a member is a node, and no number any more.
    Set("process.threads", "3");
    EXPECT_TRUE(keyed(5));
    Set("process.threads::mine", "1");
    EXPECT_EQ(Get("process.threads"), "3");
    EXPECT_FALSE(keyed(5));
}

TEST_F(MediaPath, PropertiesMayChangeWhileFramesPass) {
    SetKey(eCKT_RGB);
    std::jthread host([this](const std::stop_token &stop) {
        const char *const pairs[][2] = {{"process.threads", "3"},   {"keying.borders", "8 4"}, {"output.thread", "false"},
                                        {"keying.borders", ""},     {"output.thread", "true"}, {"process.threads", "1"},
                                        {"process.threads::x", "1"}};
        for (size_t i = 0; !stop.stop_requested(); ++i) {
            const auto &pair = pairs[i % std::size(pairs)];
            m_props->PropsSet(Bstr(TextFromUtf8(pair[0])).get(), Bstr(TextFromUtf8(pair[1])).get());
            if (i % 50 == 0) m_props->PropsSet(nullptr, Bstr(TextFromUtf8("<n process.threads='2'/>")).get());
            std::this_thread::yield();
        }
    });
    for (int i = 0; i < 150; ++i) {
        ComPtr<IZFrame> out;
        ASSERT_GE(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_OK) << i;
        // Keyed inside the borders, whatever they were.
        if (!out) continue;
        ASSERT_EQ(At(Pixels(out.get()), 20, 10), 0u) << i;
    }
}

TEST_F(MediaPath, AnEmptyPropertyIsZeroAndNotTheDefault) {
    Set("output.thread", "");
    SetKey(eCKT_RGB);
    ComPtr<IZFrame> out;
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_OK) << "keyed in the call itself";
    Set("process.threads", "");
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), E_INVALIDARG);
}

TEST_F(MediaPath, NullArgumentsAndForeignObjectsAreRefused) {
    ComPtr<IZFrame> out;
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, nullptr, out.Put()), E_INVALIDARG);
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), nullptr), E_INVALIDARG);
    const ComPtr<IZFProcess> process = QueryFor<IZFProcess>(m_plugin.get());
    ASSERT_TRUE(process);
    ComPtr<IUnknown> result;
    EXPECT_EQ(process->FrameProcess(m_plugin.get(), result.Put(), nullptr), E_NOINTERFACE);
    EXPECT_EQ(process->FrameProcess(nullptr, result.Put(), nullptr), E_INVALIDARG);
    EXPECT_EQ(m_key->KeyRawSet(nullptr), E_POINTER);
    EXPECT_EQ(m_key->KeyRawGet(nullptr), E_POINTER);
}

TEST_F(MediaPath, FrameProcessHandsTheInputBackWhenThereIsNoResult) {
    SetKey(eCKT_RGB);
    const ComPtr<IZFProcess> process = QueryFor<IZFProcess>(m_plugin.get());
    const ComPtr<IZFrame> in = Frame();
    ComPtr<IUnknown> out;
    EXPECT_EQ(process->FrameProcess(in.get(), out.Put(), nullptr), S_FALSE);
    EXPECT_EQ(QueryFor<IZFrame>(out.get()).get(), in.get());
    AwaitOutput();
    EXPECT_EQ(process->FrameProcess(Frame().get(), out.Put(), nullptr), S_OK);
    EXPECT_NE(QueryFor<IZFrame>(out.get()).get(), in.get());
}

TEST_F(MediaPath, FlushAndEndLeaveThePendingFrame) {
    SetKey(eCKT_RGB);
    ComPtr<IZFrame> out;
    m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put());
    EXPECT_EQ(m_plugin->OnMediaFlush(0, nullptr, 7), S_OK);
    EXPECT_EQ(m_plugin->OnMediaEnd(0, nullptr, 7), S_OK);
    AwaitOutput();
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_OK);
    EXPECT_TRUE(out);
}

TEST_F(MediaPath, ARecordThatStatesMoreThanItsPixelsIsRefused) {
    Set("output.thread", "false");
    SetKey(eCKT_RGB);
    const ComPtr<IZFrame> frame = Frame(eZFCC_ARGB32);
    Z_AV_PROPS props{};
    frame->FrameAVPropsGet(&props);
    props.vidProps.nHeight = -100000;
    frame->FrameAVPropsSet(&props);
    ComPtr<IZFrame> out;
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, frame.get(), out.Put()), kVfwEInvalidMediaType);
    EXPECT_FALSE(out);
}

TEST_F(MediaPath, AFrameWithoutPixelsIsRefusedByAKeyAndPassesWithoutOne) {
    Set("output.thread", "false");
    ComPtr<IZFrame> empty;
    ASSERT_EQ(m_frames->FrameCreate(0, nullptr, empty.Put()), S_OK);
    ComPtr<IZFrame> out;
    SetKey(eCKT_Alpha);
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, empty.get(), out.Put()), S_OK);
    SetKey(eCKT_RGB);
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, empty.get(), out.Put()), E_POINTER);
}

TEST_F(MediaPath, AnEmptyKeyMakesTheFrameOpaqueOnSeveralThreadsOnly) {
    Set("output.thread", "false");
    CHROMA_KEY_RAW key{};
    key.eType = eCKT_RGB;
    key.nKeysUsed = -5;
    ASSERT_EQ(m_key->KeyRawSet(&key), S_OK);
    ComPtr<IZFrame> out;
    ASSERT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_OK);
    EXPECT_EQ(At(Pixels(out.get()), 0, 0), kGreen);
}

TEST_F(MediaPath, TheRawKeyComesBackAsItWasSet) {
    CHROMA_KEY_RAW key{};
    key.eType = eCKT_YUV;
    key.nKeysUsed = 20;
    key.arrKeys[15].nReverseKey = -7;
    ASSERT_EQ(m_key->KeyRawSet(&key), S_OK);
    CHROMA_KEY_RAW back{};
    ASSERT_EQ(m_key->KeyRawGet(&back), S_OK);
    EXPECT_EQ(std::memcmp(&key, &back, sizeof key), 0);
    EXPECT_EQ(m_key->KeySet(nullptr), S_OK);
    m_key->KeyRawGet(&back);
    EXPECT_EQ(back.eType, eCKT_Alpha);
    EXPECT_EQ(back.nKeysUsed, 0);
}

}    // namespace
}    // namespace zck
