#include <gtest/gtest.h>

#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

#include "platform/sync.h"

namespace zck {
namespace {

using Exclusive = std::unique_lock<FrameRWLock>;
using Shared = std::shared_lock<FrameRWLock>;

/// A thread that asks for the lock and says when it has it.
template <class Lock>
class Contender {
public:
    explicit Contender(FrameRWLock &lock)
        : m_thread([this, &lock] {
              m_asking = true;
              const Lock hold(lock);
              m_inside.Set();
              m_leave.Wait(kInfinite);
          }) {
        while (!m_asking) SleepMs(0);
    }
    ~Contender() {
        m_leave.Set();
        m_thread.join();
    }
    void Leave() { m_leave.Set(); }
    bool Inside(uint32_t ms) { return m_inside.Wait(ms); }

private:
    std::atomic<bool> m_asking{false};
    Event m_inside{true};
    Event m_leave{true};
    std::thread m_thread;
};

TEST(FrameRWLockTest, ReadersShare) {
    FrameRWLock lock;
    const Shared mine(lock);
    Contender<Shared> other(lock);
    EXPECT_TRUE(other.Inside(10000));
}

TEST(FrameRWLockTest, WriterKeepsReadersAndWritersOut) {
    FrameRWLock lock;
    Exclusive mine(lock);
    Contender<Shared> reader(lock);
    Contender<Exclusive> writer(lock);
    EXPECT_FALSE(reader.Inside(30));
    EXPECT_FALSE(writer.Inside(0));
    mine.unlock();
    reader.Leave();
    writer.Leave();
    EXPECT_TRUE(reader.Inside(10000));
    EXPECT_TRUE(writer.Inside(10000));
}

TEST(FrameRWLockTest, WriterWaitsForTheLastReader) {
    FrameRWLock lock;
    Shared mine(lock);
    Contender<Exclusive> writer(lock);
    EXPECT_FALSE(writer.Inside(30));
    mine.unlock();
    EXPECT_TRUE(writer.Inside(10000));
}

TEST(FrameRWLockTest, AnnouncedWriterGoesBeforeLaterReaders) {
    FrameRWLock lock;
    Shared mine(lock);
    Contender<Exclusive> writer(lock);
    std::atomic<int> entries{0};
    std::atomic<bool> writerWasIn{false};
    std::thread later([&] {
        while (!writerWasIn) {
            const Shared hold(lock);
            ++entries;
        }
    });
    // The announcement itself cannot be seen, only that later readers come in no more.
    int looks = 0;
    for (int before = -1; before != entries && looks < 40; ++looks) {
        before = entries;
        SleepMs(300);
    }
    EXPECT_LT(looks, 40);
    EXPECT_FALSE(writer.Inside(0));
    mine.unlock();
    EXPECT_TRUE(writer.Inside(kInfinite));
    writerWasIn = true;
    writer.Leave();
    later.join();
}

TEST(FrameRWLockTest, ExclusiveOwnerEntersAgain) {
    FrameRWLock lock;
    Exclusive outer(lock);
    {
        const Shared read(lock);
        const Exclusive again(lock);
        const Shared more(lock);
    }
    Contender<Shared> reader(lock);
    EXPECT_FALSE(reader.Inside(30)) << "the inner leave must not end the outer hold";
    outer.unlock();
    EXPECT_TRUE(reader.Inside(10000));
}

TEST(FrameRWLockTest, SharedRecursionPassesAWaitingWriter) {
    FrameRWLock lock(1024, SharedRecursion::Yes);
    Shared outer(lock);
    Contender<Exclusive> writer(lock);
    EXPECT_FALSE(writer.Inside(30));
    {
        const Shared inner(lock);
        const Shared third(lock);
    }
    EXPECT_FALSE(writer.Inside(30)) << "the inner leave must not end the outer hold";
    outer.unlock();
    EXPECT_TRUE(writer.Inside(10000));
}

TEST(FrameRWLockTest, SharedRecursionOfMoreLocksThanThereIsRoomFor) {
    std::vector<std::unique_ptr<FrameRWLock>> locks;
    for (int i = 0; i < 40; ++i) locks.push_back(std::make_unique<FrameRWLock>(0, SharedRecursion::Yes));
    for (int round = 0; round < 3; ++round) {
        for (const auto &lock : locks) lock->lock_shared();
    }
    for (int round = 0; round < 3; ++round) {
        for (const auto &lock : locks) lock->unlock_shared();
    }
    for (const auto &lock : locks) {
        Contender<Exclusive> writer(*lock);
        EXPECT_TRUE(writer.Inside(10000));
    }
}

TEST(FrameRWLockTest, ReadersNeverSeeHalfAWrite) {
    for (const SharedRecursion recursion : {SharedRecursion::No, SharedRecursion::Yes}) {
        FrameRWLock lock(1024, recursion);
        int64_t a = 0;
        int64_t b = 0;
        std::atomic<int> broken{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 2; ++i) {
            threads.emplace_back([&] {
                for (int round = 0; round < 3000; ++round) {
                    const Exclusive hold(lock);
                    ++a;
                    ++b;
                }
            });
            threads.emplace_back([&] {
                for (int round = 0; round < 3000; ++round) {
                    const Shared hold(lock);
                    if (a != b) ++broken;
                }
            });
        }
        for (std::thread &thread : threads) thread.join();
        EXPECT_EQ(broken, 0);
        EXPECT_EQ(a, 6000);
    }
}

}    // namespace
}    // namespace zck
