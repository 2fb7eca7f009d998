#include "platform/worker_thread.h"
#include "tests/failures/failing_memory.h"

namespace zck::test {
namespace {

struct Owner {
    Event ran{true};
};

void RunLoop(void *owner, int32_t, CWorkerThread &self) {
    while (self.WaitWake()) static_cast<Owner *>(owner)->ran.Set();
}

HRESULT StartAndStop(CWorkerThread &thread, Owner &owner) {
    const HRESULT hr = thread.Start(&owner, 0);
    if (FAILED(hr)) {
        EXPECT_FALSE(thread.HasThread());
        EXPECT_EQ(S_FALSE, thread.Stop(kInfinite, false));
        return hr;
    }
    thread.Wake();
    EXPECT_TRUE(owner.ran.Wait(kInfinite));
    return thread.Stop(kInfinite, false);
}

TEST(ThreadFailures, AThreadOfItsOwn) {
    EachRequestFailsOnce([] {
        Owner owner;
        CWorkerThread thread(RunLoop);
        return StartAndStop(thread, owner);
    });
}

TEST(ThreadFailures, AThreadThatIsStartedAgain) {
    CWorkerThread thread(RunLoop);
    EachRequestFailsOnce([&] {
        Owner owner;
        return StartAndStop(thread, owner);
    });
}

}    // namespace
}    // namespace zck::test
