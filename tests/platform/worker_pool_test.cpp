#include "platform/worker_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace zck {
namespace {

TEST(WorkerPool, EachBandRunsOnceWhateverTheThreads) {
    for (const int32_t threads : {0, 1, 3, WorkerPool::kThreadsMax, 99}) {
        WorkerPool pool(threads);
        EXPECT_LE(pool.ThreadCount(), WorkerPool::kThreadsMax);
        for (const int32_t bands : {-1, 0, 1, 2, 3, 17, 200}) {
            std::vector<std::atomic<int32_t>> runs(200);
            EXPECT_EQ(pool.Run(bands,
                               [&](int32_t band) {
                                   ++runs[static_cast<size_t>(band)];
                                   return S_OK;
                               }),
                      S_OK);
            for (int32_t i = 0; i < 200; ++i)
                ASSERT_EQ(runs[static_cast<size_t>(i)], i < bands ? 1 : 0) << i << " of " << bands;
        }
    }
}

TEST(WorkerPool, TheLowestBandThatFailedTells) {
    WorkerPool pool(3);
    for (int round = 0; round < 50; ++round) {
        const HRESULT hr = pool.Run(40, [](int32_t band) -> HRESULT {
            if (band == 7) throw std::bad_alloc();
            if (band == 9) throw std::runtime_error("x");
            return band > 9 ? E_FAIL : band == 3 ? S_FALSE : S_OK;
        });
        ASSERT_EQ(hr, E_OUTOFMEMORY);
    }
}

// Two bands that wait for one another end only on two threads.
TEST(WorkerPool, BandsRunBesideTheCaller) {
    WorkerPool pool(1);
    for (int round = 0; round < 20; ++round) {
        Event here[2] = {Event(true), Event(true)};
        std::set<std::thread::id> ids;
        CriticalSection lock;
        const HRESULT hr = pool.Run(2, [&](int32_t band) {
            here[band].Set();
            here[1 - band].Wait(kInfinite);
            const std::lock_guard guard(lock);
            ids.insert(std::this_thread::get_id());
            return S_OK;
        });
        ASSERT_EQ(hr, S_OK);
        ASSERT_EQ(ids.size(), 2U);
    }
}

TEST(WorkerPool, ABandMayRunBandsItself) {
    WorkerPool pool(2);
    std::atomic<int32_t> runs = 0;
    const auto inner = [&](int32_t) {
        ++runs;
        return S_OK;
    };
    EXPECT_EQ(pool.Run(6, [&](int32_t) { return pool.Run(5, inner); }), S_OK);
    EXPECT_EQ(runs, 30);
}

TEST(WorkerPool, ManyCallersShareIt) {
    WorkerPool pool(3);
    std::atomic<int32_t> runs = 0;
    std::vector<std::thread> callers;
    for (int i = 0; i < 6; ++i)
        callers.emplace_back([&] {
            for (int round = 0; round < 100; ++round)
                EXPECT_EQ(pool.Run(round % 9,
                                   [&](int32_t band) {
                                       ++runs;
                                       return band == 5 ? E_FAIL : S_OK;
                                   }),
                          round % 9 > 5 ? E_FAIL : S_OK);
        });
    for (std::thread &caller : callers) caller.join();
    int32_t wanted = 0;
    for (int round = 0; round < 100; ++round) wanted += round % 9;
    EXPECT_EQ(runs, 6 * wanted);
}

TEST(WorkerPool, TheSharedPoolLivesAsLongAsItIsHeld) {
    const std::shared_ptr<WorkerPool> held = WorkerPool::Shared();
    EXPECT_EQ(held, WorkerPool::Shared());
    const std::weak_ptr<WorkerPool> seen = [] {
        auto other = std::make_shared<WorkerPool>(1);
        return std::weak_ptr<WorkerPool>(other);
    }();
    EXPECT_TRUE(seen.expired());
    EXPECT_EQ(held.use_count(), 1);
}

}    // namespace
}    // namespace zck
