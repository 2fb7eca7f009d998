// A slice that does not end: takes its 10 seconds, hence a program of its own.
#include <gtest/gtest.h>

#include "keying/slices/slices.h"
#include "platform/clock.h"
#include "platform/status.h"
#include "platform/sync.h"
#include "tests/keying/pipeline/image_fixture.h"

namespace zck {
namespace {

struct Stuck {
    std::atomic<bool> stuck{true};
    static HRESULT Fetch(void *context, int32_t row, uint8_t *) {
        auto &source = *static_cast<Stuck *>(context);
        // Ends by itself within the time that the pool gives a thread to stop.
        for (int32_t i = 0; row == 30 && source.stuck && i < 115; ++i) SleepMs(100);
        return S_OK;
    }
};

TEST(SliceTimeout, AStuckSliceCostsTheFrameAndThePoolComesBack) {
    CSliceThreads pool;
    pool.SetThreadCount(2);
    const Z_VID_PROPS props = test::Props(32, 32);
    test::Guarded pixels(test::PixelBytes(props));
    test::Guarded alpha(test::AlphaBytes(props));
    const CHROMA_KEY_RAW key = test::GreenKey();
    Stuck source;
    const RowSource rows{&source, Stuck::Fetch};
    const uint32_t start = TimerMs();
    EXPECT_EQ(StatusOf(0x800705B4),
              pool.Dispatch(pixels.Data(), alpha.Data(), &props, &key, WriteAlpha::Yes, ReturnEarly::No, &rows));
    const uint32_t took = TimerMs() - start;
    EXPECT_GE(took, 9900U);
    EXPECT_LT(took, 21000U);
    source.stuck = false;
    EXPECT_EQ(S_OK, pool.Dispatch(pixels.Data(), alpha.Data(), &props, &key, WriteAlpha::Yes, ReturnEarly::No, &rows));
}

}    // namespace
}    // namespace zck
