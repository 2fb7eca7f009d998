#include "platform/worker_thread.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/clock.h"
#include "platform/process.h"
#include "platform/status.h"

namespace zck {
namespace {

struct Owner {
    std::atomic<int> rounds{0};
    std::atomic<int> left{0};
    std::atomic<int32_t> index{-1};
    std::atomic<uint32_t> threadId{0};
    Event inBody{true};
    Event mayGo{true};
    Event worked{false};
};

void CountRounds(void *pointer, int32_t index, CWorkerThread &self) {
    auto *owner = static_cast<Owner *>(pointer);
    owner->index = index;
    owner->threadId = CurrentThreadId();
    while (self.WaitWake()) {
        ++owner->rounds;
        owner->worked.Set();
    }
    ++owner->left;
}

void HangUntilTold(void *pointer, int32_t, CWorkerThread &self) {
    auto *owner = static_cast<Owner *>(pointer);
    owner->inBody.Set();
    owner->mayGo.Wait(kInfinite);
    if (!self.Running() && !self.WaitWake()) ++owner->left;
    owner->worked.Set();
}

void SpinForEver(void *pointer, int32_t, CWorkerThread &) {
    auto *owner = static_cast<Owner *>(pointer);
    owner->inBody.Set();
    for (;;) ++owner->rounds;
}

void Throw(void *pointer, int32_t, CWorkerThread &) {
    static_cast<Owner *>(pointer)->inBody.Set();
    throw std::runtime_error("body");
}

TEST(WorkerThreadTest, RunsOneRoundForEachWake) {
    Owner owner;
    CWorkerThread thread(CountRounds);
    ASSERT_EQ(thread.Start(&owner, 7), S_OK);
    EXPECT_TRUE(thread.Running());
    for (int i = 1; i <= 100; ++i) {
        thread.Wake();
        ASSERT_TRUE(owner.worked.Wait(10000));
        ASSERT_EQ(owner.rounds, i);
    }
    EXPECT_EQ(owner.index, 7);
    EXPECT_EQ(owner.threadId, thread.ThreadId());
    EXPECT_NE(owner.threadId, CurrentThreadId());
    EXPECT_EQ(thread.Stop(kInfinite, false), S_OK);
    EXPECT_EQ(owner.left, 1);
    EXPECT_FALSE(thread.HasThread());
    EXPECT_EQ(thread.ThreadId(), 0U);
}

TEST(WorkerThreadTest, RefusesToStartWithoutOwnerOrBody) {
    Owner owner;
    CWorkerThread thread(CountRounds);
    EXPECT_EQ(thread.Start(nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(CWorkerThread().Start(&owner, 0), E_INVALIDARG);
    EXPECT_FALSE(thread.HasThread());
}

TEST(WorkerThreadTest, IsQuietWithoutAThread) {
    CWorkerThread thread(CountRounds);
    thread.Wake();
    EXPECT_EQ(thread.Stop(0, true), S_FALSE);
    EXPECT_FALSE(thread.Running());
    EXPECT_FALSE(thread.WaitWake());
}

TEST(WorkerThreadTest, StartStopsTheThreadThatRuns) {
    Owner owner;
    CWorkerThread thread(CountRounds);
    ASSERT_EQ(thread.Start(&owner, 1), S_OK);
    ASSERT_EQ(thread.Start(&owner, 2), S_OK);
    EXPECT_EQ(owner.left, 1);
    thread.Wake();
    EXPECT_TRUE(owner.worked.Wait(10000));
    EXPECT_EQ(owner.index, 2);
    EXPECT_EQ(thread.Stop(10000, false, true), S_OK);
    EXPECT_EQ(owner.left, 2);
}

TEST(WorkerThreadTest, DestructorStops) {
    Owner owner;
    {
        CWorkerThread thread(CountRounds);
        ASSERT_EQ(thread.Start(&owner, 0), S_OK);
    }
    EXPECT_EQ(owner.left, 1);
}

TEST(WorkerThreadTest, ThreadLeftToItselfSeesItsFlagClearedBesideANewOne) {
    Owner old;
    Owner fresh;
    CWorkerThread thread(HangUntilTold);
    ASSERT_EQ(thread.Start(&old, 0), S_OK);
    ASSERT_TRUE(old.inBody.Wait(10000));
    const int64_t start = CounterRead();
    EXPECT_EQ(thread.Stop(50, false), kErrorTimeout);
    EXPECT_GE((CounterRead() - start) * 1000 / CounterFrequency(), 45);
    EXPECT_FALSE(thread.HasThread());
    thread.SetBody(CountRounds);
    ASSERT_EQ(thread.Start(&fresh, 0), S_OK);
    old.mayGo.Set();
    ASSERT_TRUE(old.worked.Wait(10000));
    EXPECT_EQ(old.left, 1);
    thread.Wake();
    EXPECT_TRUE(fresh.worked.Wait(10000)) << "the wake went to the old thread";
    EXPECT_EQ(thread.Stop(kInfinite, false), S_OK);
}

TEST(WorkerThreadTest, TerminatesAThreadThatComputes) {
    // What a terminated thread refers to is never freed.
    static Owner owner;
    CWorkerThread thread(SpinForEver);
    ASSERT_EQ(thread.Start(&owner, 0), S_OK);
    ASSERT_TRUE(owner.inBody.Wait(10000));
    EXPECT_EQ(thread.Stop(20, true), kErrorTimeout);
    const int rounds = owner.rounds;
    SleepMs(30);
    EXPECT_EQ(owner.rounds, rounds) << "the thread still runs";
}

TEST(WorkerThreadTest, TerminatesAThreadThatWaitsAndStartsAgain) {
    static Owner owner;
    owner.left = 0;
    owner.mayGo.Reset();
    CWorkerThread thread(HangUntilTold);
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(thread.Start(&owner, 0), S_OK);
        ASSERT_TRUE(owner.inBody.Wait(10000));
        EXPECT_EQ(thread.Stop(20, true), kErrorTimeout);
        owner.inBody.Reset();
    }
    owner.mayGo.Set();
    SleepMs(20);
    EXPECT_EQ(owner.left, 0) << "a terminated thread came back";
    ASSERT_EQ(thread.Start(&owner, 0), S_OK);
    EXPECT_EQ(thread.Stop(10000, true), S_OK);
}

TEST(WorkerThreadTest, BodyThatThrowsEndsItsThreadOnly) {
    Owner owner;
    CWorkerThread thread(Throw);
    ASSERT_EQ(thread.Start(&owner, 0), S_OK);
    ASSERT_TRUE(owner.inBody.Wait(10000));
    EXPECT_EQ(thread.Stop(10000, false), S_OK);
}

}    // namespace
}    // namespace zck
