#include "platform/clock.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

TEST(ClockTest, AllClocksSeeASleep) {
    const int64_t counter = CounterRead();
    const uint32_t timer = TimerMs();
    const uint64_t stamp = TimeStampTicks();
    SleepMs(50);
    const double ms = static_cast<double>(CounterRead() - counter) * 1000 / static_cast<double>(CounterFrequency());
    EXPECT_GE(ms, 49);
    EXPECT_LT(ms, 5000);
    EXPECT_GE(TimerMs() - timer, 45U);
    EXPECT_GT(TimeStampTicks(), stamp);
}

}    // namespace
}    // namespace zck
