#include "platform/sync.h"

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/clock.h"

namespace zck {
namespace {

int64_t MsSince(int64_t start) { return (CounterRead() - start) * 1000 / CounterFrequency(); }

TEST(EventTest, ManualResetStaysSet) {
    Event event(true);
    EXPECT_TRUE(event.Valid());
    EXPECT_FALSE(event.Wait(0));
    event.Set();
    EXPECT_TRUE(event.Wait(0));
    EXPECT_TRUE(event.Wait(kInfinite));
    event.Reset();
    EXPECT_FALSE(event.Wait(0));
}

TEST(EventTest, AutoResetIsTakenByOneWait) {
    Event event(false, true);
    EXPECT_TRUE(event.Wait(0));
    EXPECT_FALSE(event.Wait(0));
    event.Set();
    event.Set();
    EXPECT_TRUE(event.Wait(kInfinite));
    EXPECT_FALSE(event.Wait(0));
}

TEST(EventTest, WaitLastsAsLongAsAsked) {
    Event event(false);
    const int64_t start = CounterRead();
    EXPECT_FALSE(event.Wait(60));
    EXPECT_GE(MsSince(start), 55);
}

TEST(EventTest, WakesASleeper) {
    Event ping(false);
    Event pong(false);
    std::thread other([&] {
        for (int i = 0; i < 2000; ++i) {
            ping.Wait(kInfinite);
            pong.Set();
        }
    });
    for (int i = 0; i < 2000; ++i) {
        ping.Set();
        ASSERT_TRUE(pong.Wait(10000));
    }
    other.join();
}

TEST(EventTest, MayBeDestroyedByTheOneWhoWaited) {
    for (int i = 0; i < 500; ++i) {
        auto event = std::make_unique<Event>(i % 2 != 0);
        Event *raw = event.get();
        std::thread setter([raw] { raw->Set(); });
        EXPECT_TRUE(event->Wait(10000));
        event.reset();
        setter.join();
    }
}

TEST(EventTest, OneSetReleasesOneOfManyWaiters) {
    Event event(false);
    std::atomic<int> taken{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            event.Wait(kInfinite);
            ++taken;
        });
    }
    for (int i = 1; i <= 4; ++i) {
        event.Set();
        while (taken < i) SleepMs(0);
        SleepMs(5);
        EXPECT_EQ(taken, i);
    }
    for (std::thread &thread : threads) thread.join();
}

TEST(WaitAllTest, ReturnsWhenTheLastIsSet) {
    Event a(true);
    Event b(true);
    Event c(true);
    Event *all[] = {&a, &b, &c};
    a.Set();
    c.Set();
    EXPECT_FALSE(WaitAll(all, 3, 0));
    const int64_t start = CounterRead();
    EXPECT_FALSE(WaitAll(all, 3, 60));
    EXPECT_GE(MsSince(start), 55);
    std::thread late([&] {
        SleepMs(20);
        b.Set();
    });
    EXPECT_TRUE(WaitAll(all, 3, 10000));
    late.join();
    EXPECT_TRUE(WaitAll(all, 3, 0));
}

TEST(WaitAllTest, TakesAutoResetEventsOnlyTogether) {
    Event a(false, true);
    Event b(false);
    Event *all[] = {&a, &b};
    EXPECT_FALSE(WaitAll(all, 2, 20));
    b.Set();
    EXPECT_TRUE(WaitAll(all, 2, 0));
    EXPECT_FALSE(a.Wait(0));
    EXPECT_FALSE(b.Wait(0));
}

TEST(WaitAllTest, ManyRoundsWithSixteenThreads) {
    constexpr int kThreads = 16;
    std::vector<std::unique_ptr<Event>> wake;
    std::vector<std::unique_ptr<Event>> done;
    std::vector<Event *> all;
    std::vector<int> work(kThreads);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        wake.push_back(std::make_unique<Event>(false));
        done.push_back(std::make_unique<Event>(true));
        all.push_back(done.back().get());
    }
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            const auto at = static_cast<size_t>(i);
            for (int round = 0; round < 200; ++round) {
                wake[at]->Wait(kInfinite);
                ++work[at];
                done[at]->Set();
            }
        });
    }
    for (int round = 1; round <= 200; ++round) {
        for (const auto &event : done) event->Reset();
        for (const auto &event : wake) event->Set();
        ASSERT_TRUE(WaitAll(all.data(), kThreads, 10000));
        for (const int count : work) ASSERT_EQ(count, round);
    }
    for (std::thread &thread : threads) thread.join();
}

TEST(WaitAllTest, RefusesBadLists) {
    Event a(true, true);
    Event *all[kWaitAllMax + 1] = {&a};
    EXPECT_TRUE(WaitAll(all, 1, 0));
    EXPECT_FALSE(WaitAll(all, 0, 0));
    EXPECT_FALSE(WaitAll(all, 2, 0));
    EXPECT_FALSE(WaitAll(all, kWaitAllMax + 1, 0));
    EXPECT_FALSE(WaitAll(nullptr, 1, 0));
}

TEST(CriticalSectionTest, AdmitsItsOwnerAgainAndNobodyElse) {
    CriticalSection section(100);
    std::unique_lock outer(section);
    EXPECT_TRUE(section.try_lock());
    const auto others = [&] {
        bool got = false;
        std::thread([&] {
            got = section.try_lock();
            if (got) section.unlock();
        }).join();
        return got;
    };
    EXPECT_FALSE(others());
    section.unlock();
    EXPECT_FALSE(others());
    outer.unlock();
    EXPECT_TRUE(others());
}

TEST(CriticalSectionTest, KeepsThreadsApart) {
    CriticalSection section;
    int64_t sum = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 10000; ++round) {
                const std::lock_guard lock(section);
                ++sum;
            }
        });
    }
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(sum, 40000);
}

}    // namespace
}    // namespace zck
