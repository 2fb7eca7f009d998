// For what a thread does by itself and tells nobody.
#pragma once

#include "platform/sync.h"

namespace zck::test {

/// Looks until the condition holds, at most for a minute and more on a busy machine; then it is false for good.
template <class Condition>
bool Eventually(Condition &&holds) {
    for (int looks = 0; looks < 60000; ++looks) {
        if (holds()) return true;
        SleepMs(1);
    }
    return false;
}

}    // namespace zck::test
