// Memory that fails once: for each request of a path, what comes of it when just this one gets nothing.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>

#include "platform/object.h"
#include "platform/status.h"

namespace zck::test {

/// Counts the requests of all threads: those of `new`, and those of `malloc` and `calloc` that this program's own code makes.
class FailingMemory {
public:
    /// The `n`-th request from now on fails, once; with `size` only requests of that many bytes count.
    static void FailNth(int64_t n, size_t size = 0) noexcept;
    /// Ends that, and tells whether a request failed.
    static bool End() noexcept;
    /// Blocks of `new` that are not freed.
    static int64_t Blocks() noexcept;
    /// Whether the current request of this thread is to fail; for the functions that give memory.
    static bool Fails(size_t size) noexcept;

    /// While it lives, requests of this thread neither count nor fail: for what a path prepares and looks at.
    /// One thread at a time.
    class Pause {
    public:
        Pause() noexcept;
        ~Pause();
        Pause(const Pause &) = delete;
        Pause &operator=(const Pause &) = delete;

    private:
        uint32_t m_before;
    };
};

/// Which answers a path may give when a request fails.
struct Answers {
    std::initializer_list<HRESULT> statuses = {E_OUTOFMEMORY};
    bool bMaySucceed = false;    ///< some of its requests can be done without
};

/// Runs `path`, which returns a status, again and again with its first, second, ... request failing, until none is left.
/// Each failure has an answer and loses no block and no object, and the path succeeds afterwards. What a path makes
/// once and keeps it makes in a first run.
template <class Path>
void EachRequestFailsOnce(Path &&path, Answers answers = {}) {
    for (int i = 0; i < 2; ++i) ASSERT_EQ(S_OK, path());
    bool failed = true;
    for (int64_t n = 1; failed; ++n) {
        const int64_t blocks = FailingMemory::Blocks();
        const int32_t objects = ModuleCount::Get();
        FailingMemory::FailNth(n);
        const HRESULT hr = path();
        failed = FailingMemory::End();
        const int64_t lost = FailingMemory::Blocks() - blocks;
        const std::string request = "request " + std::to_string(n) + (failed ? " failed" : ", of none that failed");
        const bool known = std::find(answers.statuses.begin(), answers.statuses.end(), hr) != answers.statuses.end();
        EXPECT_TRUE(failed ? known || (hr == S_OK && answers.bMaySucceed) : hr == S_OK && n > 1)
            << request << ", status " << std::hex << hr;
        // Fewer than before are blocks that a pool gave up.
        EXPECT_LE(lost, 0) << request;
        EXPECT_EQ(objects, ModuleCount::Get()) << request;
        ASSERT_EQ(S_OK, path()) << "after " << request;
    }
}

}    // namespace zck::test
