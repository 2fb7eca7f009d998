// Failures on the way of a frame pass the one place where a trace hears them, once each, also those that no caller hears.
#include "platform/failure.h"
#include "tests/keying/plugin/keyer_test.h"

namespace zck {
namespace {

std::vector<HRESULT> s_heard;

class FailuresHeard : public KeyerTest {
protected:
    void SetUp() override {
        KeyerTest::SetUp();
        s_heard.clear();
        // One thread at a time runs here: the caller's, or the output thread that the caller waits for.
        FailureTraceSet([](HRESULT hr) noexcept { s_heard.push_back(hr); });
    }
    void TearDown() override { FailureTraceSet(nullptr); }
};

// A count of threads that is none.
TEST_F(FailuresHeard, OfAStraightCallOnce) {
    Set("output.thread", "0");
    Set("process.threads", "0");
    SetKey(eCKT_RGB);
    ComPtr<IZFrame> out;
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), E_INVALIDARG);
    EXPECT_EQ(s_heard, (std::vector<HRESULT>{E_INVALIDARG}));
}

TEST_F(FailuresHeard, OfTheOutputThread) {
    Set("process.threads", "0");
    SetKey(eCKT_RGB);
    ComPtr<IZFrame> out;
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_FALSE);
    AwaitOutput();
    EXPECT_EQ(s_heard, (std::vector<HRESULT>{E_INVALIDARG}));
}

TEST_F(FailuresHeard, NothingOfAKeyedFrame) {
    Set("output.thread", "0");
    SetKey(eCKT_RGB);
    ComPtr<IZFrame> out;
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, Frame().get(), out.Put()), S_OK);
    EXPECT_TRUE(s_heard.empty());
}

}    // namespace
}    // namespace zck
