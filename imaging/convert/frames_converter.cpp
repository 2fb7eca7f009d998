#include "imaging/convert/frames_converter.h"

#include <algorithm>
#include <cstring>
#include <mutex>

#include "frames/media/video_props.h"
#include "imaging/convert/convert_bits.h"
#include "imaging/convert/field_step.h"
#include "imaging/convert/quality.h"
#include "platform/status.h"

namespace zck {
namespace {

// By one line in memory: up for a target whose first field comes first.
void MoveLine(const EngineTarget &target, const Z_VID_PROPS &props) {
    const int64_t row = props.nRowBytes;
    const int64_t rest = std::min<int64_t>(FrameBufferSize(&props), target.bytes) - row;
    if (rest <= 0) return;
    const bool up = FieldOrderSign(&props) > 0;
    std::memmove(target.dst + (up ? 0 : row), target.dst + (up ? row : 0), static_cast<size_t>(rest));
}

}    // namespace

struct FramesConverter::Worker {
    Event done{true};
    HRESULT result = S_OK;
    CWorkerThread thread{&FramesConverter::Body};    // last, to be stopped first
};

FramesConverter::FramesConverter() = default;
FramesConverter::~FramesConverter() = default;

HRESULT FramesConverter::Convert(const EngineSource &source, const EngineTarget &target, FieldMode mode,
                                 int32_t quality) noexcept {
    if (source.props == nullptr || target.props == nullptr) return E_POINTER;
    return Guarded([&] {
        Z_VID_PROPS sp = *source.props;
        Z_VID_PROPS tp = *target.props;
        HRESULT hr = RecordComplete(sp);
        if (hr == S_OK) hr = RecordComplete(tp);
        if (hr != S_OK) return hr;
        const int32_t from = FieldOrderSign(&sp);
        const int32_t to = FieldOrderSign(&tp);
        if (target.props->eInterlace == eZI_Progressive && from != 0) mode = FieldMode::kFirst;
        const bool apart = FieldStandsAlone(sp, tp) && FieldStandsAlone(tp, tp);
        const bool both = mode == FieldMode::kBoth && from != 0 && !QualityDecode(quality).bHighQuality && apart;
        const std::lock_guard lock(m_cs);
        FieldStep step;
        hr = step.Prepare(source, target, mode, both, quality);
        if (hr != S_OK) return hr;
        if (!both) return step.RunPicture(m_field);
        hr = BothFields(step);
        if (SUCCEEDED(hr) && from != 0 && to != 0 && from != to) MoveLine(target, tp);
        return hr;
    });
}

HRESULT FramesConverter::Rotate(const EngineSource &source, const EngineTarget &target, bool bLeft, bool bInterlaced) noexcept {
    return Guarded([&] {
        const std::lock_guard lock(m_cs);
        return RotateBits(&m_rotate, source.p, source.bytes, target.dst, target.bytes, source.props, target.props, bLeft,
                          bInterlaced);
    });
}

void FramesConverter::RunField(int32_t field) noexcept {
    m_worker[field]->result = m_step->RunField(m_field, field);
    m_worker[field]->done.Set();
}

void FramesConverter::Body(void *owner, int32_t index, CWorkerThread &self) {
    while (self.WaitWake()) static_cast<FramesConverter *>(owner)->RunField(index);
}

// A field whose thread cannot be had is done here.
HRESULT FramesConverter::BothFields(FieldStep &step) {
    for (auto &worker : m_worker)
        if (!worker) worker = std::make_unique<Worker>();
    m_step = &step;
    bool woken[2] = {};
    for (int32_t i = 0; i < 2; ++i) {
        Worker &worker = *m_worker[i];
        worker.done.Reset();
        woken[i] = worker.done.Valid() && (worker.thread.HasThread() || SUCCEEDED(worker.thread.Start(this, i)));
        if (woken[i]) worker.thread.Wake();
    }
    for (int32_t i = 0; i < 2; ++i)
        if (!woken[i]) m_worker[i]->result = step.RunField(m_field, i);
    for (int32_t i = 0; i < 2; ++i)
        if (woken[i]) m_worker[i]->done.Wait(kInfinite);
    m_step = nullptr;
    return FAILED(m_worker[0]->result) ? m_worker[0]->result : m_worker[1]->result;
}

}    // namespace zck
