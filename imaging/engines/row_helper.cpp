#include "imaging/engines/row_helper.h"

namespace zck {

bool RowHelper::Begin(Work work, void *argument) noexcept {
    if (!m_done.Valid() || (!m_thread.HasThread() && FAILED(m_thread.Start(this, 0)))) return false;
    m_work = work;
    m_argument = argument;
    m_done.Reset();
    m_thread.Wake();
    return true;
}

void RowHelper::Body(void *owner, int32_t, CWorkerThread &self) {
    auto &helper = *static_cast<RowHelper *>(owner);
    while (self.WaitWake()) {
        helper.m_work(helper.m_argument);
        helper.m_done.Set();
    }
}

}    // namespace zck
