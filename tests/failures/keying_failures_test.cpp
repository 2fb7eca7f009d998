// Keying through the plug-in.
#include "frames/factory/factory.h"
#include "keying/pipeline/streaming_path.h"
#include "keying/plugin/chroma_key.h"
#include "tests/failures/failing_memory.h"
#include "tests/frames/object/frame_fixture.h"
#include "zchromakey/zchromakey.h"

namespace zck::test {
namespace {

Bstr Of(const char *text) {
    const FailingMemory::Pause pause;
    return Bstr(TextFromUtf8(text));
}

HRESULT Set(IUnknown *plugin, const char *name, const char *value) {
    return QueryFor<IZProps>(plugin)->PropsSet(Of(name).get(), Of(value).get());
}

void KeySet(IUnknown *plugin, int32_t smooth) {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.arrKeys[0].nValue = 0x0020C010;
    key.arrKeys[0].nDelta = 0x00282828;
    key.arrKeys[0].nSmoothRange = 200;
    key.nMaxTransparent = 255;
    key.nEdgesSmooth = smooth;
    ASSERT_EQ(S_OK, QueryFor<IZChromaKey>(plugin)->KeyRawSet(&key));
}

TEST(KeyingFailures, APluginOfItsOwn) {
    EachRequestFailsOnce([] {
        ComPtr<IZPlugin> plugin;
        HRESULT hr = CreateObject<CCoZChromaKey>(nullptr, IID_IZPlugin, plugin.PutVoid());
        if (SUCCEEDED(hr)) hr = Set(plugin.get(), "keying.borders", "10 10 10 10");
        if (SUCCEEDED(hr)) hr = Set(plugin.get(), "a::property::of a long name", "and a value that is as long");
        Bstr value;
        if (SUCCEEDED(hr)) hr = QueryFor<IZProps>(plugin.get())->PropsGet(Of("keying.borders").get(), value.Put());
        return hr;
    });
}

class KeyedFrames : public FrameTest {
protected:
    enum class Exactly { Yes, No };

    void SetUp() override {
        FrameTest::SetUp();
        ASSERT_EQ(S_OK, CreateObject<CCoZChromaKey>(nullptr, IID_IZPlugin, m_plugin.PutVoid()));
        KeySet(m_plugin.get(), 2);
        ASSERT_EQ(S_OK, Set(m_plugin.get(), "output.thread", "false"));
    }
    void TearDown() override {
        m_plugin.Reset();
        m_last.Reset();
        FrameTest::TearDown();
    }

    std::vector<uint8_t> Keyed(const ComPtr<IZFrame> &frame) {
        ComPtr<IZFrame> result;
        EXPECT_EQ(S_OK, m_plugin->OnMediaReceive(0, nullptr, frame.get(), result.Put()));
        return VideoOf(result).Copy();
    }

    /// The same frame again and again: it comes out whole or not at all.
    void EachRequestOfAFrame(const ComPtr<IZFrame> &frame, Exactly exactly, Answers answers) {
        const std::vector<uint8_t> whole = Keyed(frame);
        EachRequestFailsOnce(
            [&] {
                ComPtr<IZFrame> result;
                const HRESULT hr = m_plugin->OnMediaReceive(0, nullptr, frame.get(), result.Put());
                const FailingMemory::Pause pause;
                if (FAILED(hr)) return result ? E_FAIL : hr;
                const std::vector<uint8_t> keyed = VideoOf(result).Copy();
                const bool right = exactly == Exactly::Yes ? keyed == whole : keyed.size() == whole.size();
                return right ? S_OK : E_FAIL;
            },
            answers);
    }

    ComPtr<IZPlugin> m_plugin;
    ComPtr<IZFrame> m_last;
};

TEST_F(KeyedFrames, ByRows) {
    for (const eZFCC fcc : {eZFCC_ARGB32, eZFCC_UYVY}) {
        const auto frame = As<IZFrame>(Frame(Record(fcc, 64, fcc == eZFCC_UYVY ? 32 : -32)));
        EachRequestOfAFrame(frame, Exactly::Yes, {.bMaySucceed = true});
    }
}

// A cut that fails is ignored, and the frame is keyed whole. A clone without pixels has nothing to key.
TEST_F(KeyedFrames, WithinBorders) {
    ASSERT_EQ(S_OK, Set(m_plugin.get(), "keying.borders", "8 8 8 8"));
    const auto frame = As<IZFrame>(Frame(Record(eZFCC_ARGB32, 64, -32)));
    EachRequestOfAFrame(frame, Exactly::No, {.statuses = {E_OUTOFMEMORY, E_POINTER}, .bMaySucceed = true});
}

// The status of the pass over the seams is ignored.
TEST_F(KeyedFrames, ByPlanes) {
    StreamingPath::Allow(false);
    EachRequestOfAFrame(As<IZFrame>(Frame(Record(eZFCC_ARGB32, 64, -32))), Exactly::No, {.bMaySucceed = true});
    StreamingPath::Allow(true);
}

TEST_F(KeyedFrames, OverTheOutputThread) {
    ASSERT_EQ(S_OK, Set(m_plugin.get(), "output.thread", "true"));
    const auto frame = As<IZFrame>(Frame(Record(eZFCC_ARGB32, 64, -32)));
    const auto receive = [&] {
        ComPtr<IZFrame> result;
        const HRESULT hr = m_plugin->OnMediaReceive(0, nullptr, frame.get(), result.Put());
        return hr == S_OK && !result ? E_FAIL : hr;
    };
    // Until a frame comes; the output thread may need longer than a call waits.
    const auto next = [&] {
        HRESULT hr = S_FALSE;
        while (hr == S_FALSE) hr = receive();
        return hr;
    };
    ASSERT_EQ(S_OK, next());
    bool failed = true;
    for (int64_t n = 1; failed; ++n) {
        FailingMemory::FailNth(n);
        const HRESULT first = receive();
        const HRESULT second = receive();
        failed = FailingMemory::End();
        // A frame that fails on the way leaves a gap.
        for (const HRESULT hr : {first, second}) EXPECT_TRUE(hr == S_OK || hr == S_FALSE || hr == E_OUTOFMEMORY) << hr;
        EXPECT_EQ(S_OK, next()) << "after request " << n;
    }
}

// Without an event for each slice none is woken: nobody works on a frame that was given up.
TEST_F(KeyedFrames, MoreSlicesThanBefore) {
    const auto frame = As<IZFrame>(Frame(Record(eZFCC_ARGB32, 64, -32)));
    for (int64_t n = 1; n <= 2; ++n) {
        ASSERT_EQ(S_OK, Set(m_plugin.get(), "process.threads", "1"));
        Keyed(frame);
        ASSERT_EQ(S_OK, Set(m_plugin.get(), "process.threads", "3"));
        FailingMemory::FailNth(n, sizeof(Event));
        ComPtr<IZFrame> result;
        EXPECT_EQ(E_OUTOFMEMORY, m_plugin->OnMediaReceive(0, nullptr, frame.get(), result.Put()));
        EXPECT_TRUE(FailingMemory::End());
        EXPECT_FALSE(result);
        Keyed(frame);
    }
}

}    // namespace
}    // namespace zck::test
