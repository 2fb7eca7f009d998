#include "imaging/convert/copy_frame.h"

#include <algorithm>
#include <thread>

#include "frames/media/pixel_format.h"
#include "imaging/colour/convert.h"
#include "platform/status.h"
#include "platform/worker_pool.h"

namespace zck {
namespace {

constexpr int32_t kMostJobs = 4;
// To wake a thread costs more than the rows of so many pixels.
constexpr int64_t kPixelsOfAJob = 128 * 1024;

struct Job {
    const ConvertPlan *plan;
    const uint8_t *src;
    uint8_t *dst;
    int32_t jobs;

    void Run(int32_t i) const {
        const int64_t rows = plan->Rows();
        plan->RunRows(src, dst, static_cast<int32_t>(rows * i / jobs), static_cast<int32_t>(rows * (i + 1) / jobs));
    }
};

int32_t JobsFor(const ConvertPlan &plan) {
    const int64_t pixels = int64_t{plan.Width()} * plan.Rows();
    const auto processors = static_cast<int64_t>(std::max(1U, std::thread::hardware_concurrency()));
    const int64_t jobs = std::min({int64_t{kMostJobs}, processors, pixels / kPixelsOfAJob, int64_t{plan.Rows()}});
    return static_cast<int32_t>(std::max<int64_t>(jobs, 1));
}

}    // namespace

HRESULT CopyFrameCC_Thread(const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes, const Z_VID_PROPS *sp,
                           const Z_VID_PROPS *tp) {
    if (src == nullptr || dst == nullptr) return E_POINTER;
    ConvertPlan plan;
    const HRESULT hr = plan.Prepare(sp, srcBytes, tp, dstBytes);
    if (hr != S_OK) return hr;
    const Job job = {&plan, src, dst, JobsFor(plan)};
    if (!plan.RowsIndependent() || PlainFormat(sp->fccType) == PlainFormat(tp->fccType) || job.jobs == 1)
        return plan.Run(src, dst);
    return Guarded([&] {
        return WorkerPool::Shared()->Run(job.jobs, [&job](int32_t band) {
            job.Run(band);
            return S_OK;
        });
    });
}

}    // namespace zck
