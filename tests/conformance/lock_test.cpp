// The frame's reader-writer lock.
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

#include "platform/sync.h"

namespace conformance {
namespace {

void Soon() { std::this_thread::sleep_for(std::chrono::milliseconds(60)); }

TEST(FrameLock, ReadersShareAndAWriterWaitsForAll) {
    zck::FrameRWLock lock;
    lock.lock_shared();
    std::atomic<bool> second{false}, written{false};
    std::thread reader([&] {
        const std::shared_lock shared(lock);
        second = true;
    });
    reader.join();    // would hang if readers shut each other out
    EXPECT_TRUE(second);
    std::thread writer([&] {
        const std::lock_guard exclusive(lock);
        written = true;
    });
    Soon();
    EXPECT_FALSE(written);
    lock.unlock_shared();
    writer.join();
    EXPECT_TRUE(written);
}

TEST(FrameLock, AnAnnouncedWriterGoesBeforeNewReaders) {
    zck::FrameRWLock lock;
    lock.lock_shared();
    std::atomic<bool> written{false};
    std::thread writer([&] {
        const std::lock_guard exclusive(lock);
        written = true;
    });
    std::atomic<int> entries{0};
    std::thread reader([&] {
        while (!written) {
            const std::shared_lock shared(lock);
            ++entries;
        }
    });
    // A writer that waits shows in readers that come in no more.
    int looks = 0;
    for (int before = -1; before != entries && looks < 40; ++looks) {
        before = entries;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }
    EXPECT_LT(looks, 40);
    EXPECT_FALSE(written);
    lock.unlock_shared();
    writer.join();
    reader.join();
    EXPECT_TRUE(written);
}

TEST(FrameLock, ItsOwnerMayEnterAgain) {
    zck::FrameRWLock lock;
    lock.lock();
    lock.lock();
    lock.lock_shared();
    lock.unlock_shared();
    lock.unlock();
    std::atomic<bool> in{false};
    std::thread other([&] {
        const std::shared_lock shared(lock);
        in = true;
    });
    Soon();
    EXPECT_FALSE(in);
    lock.unlock();
    other.join();
    EXPECT_TRUE(in);
}

TEST(FrameLock, SharedEntryMayRecurseWhereAskedFor) {
    zck::FrameRWLock lock(1024, zck::SharedRecursion::Yes);
    lock.lock_shared();
    std::thread writer([&] { const std::lock_guard exclusive(lock); });
    Soon();
    lock.lock_shared();    // past the announced writer
    lock.unlock_shared();
    lock.unlock_shared();
    writer.join();
}

TEST(FrameLock, NoCountIsLost) {
    zck::FrameRWLock lock;
    int64_t value = 0;    // guarded
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 3000; ++i) {
                if ((i + t) % 3 == 0) {
                    const std::lock_guard exclusive(lock);
                    ++value;
                    ++value;
                } else {
                    const std::shared_lock shared(lock);
                    ASSERT_EQ(value % 2, 0);
                }
            }
        });
    for (auto &one : threads) one.join();
    EXPECT_EQ(value, 4 * 1000 * 2);
}

}    // namespace
}    // namespace conformance
