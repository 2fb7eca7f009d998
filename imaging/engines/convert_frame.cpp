#include "imaging/engines/convert_frame.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frames/media/pixel_format.h"
#include "frames/media/record_view.h"
#include "frames/media/video_props.h"
#include "imaging/colour/convert.h"
#include "imaging/colour/fill.h"
#include "imaging/engines/fit_rects.h"
#include "imaging/engines/img_convert.h"
#include "platform/status.h"

namespace zck {
namespace {

int64_t Rows(const Z_VID_PROPS &p) { return std::llabs(int64_t{p.nHeight}); }

bool SameSize(const tagRECT &a, const tagRECT &b) {
    return a.right - a.left == b.right - b.left && a.bottom - a.top == b.bottom - b.top;
}

bool Whole(const tagRECT &rc, const Z_VID_PROPS &p) { return rc.right - rc.left == p.nWidth && rc.bottom - rc.top == Rows(p); }

// One call of an engine.
struct Job {
    FieldConverter *ctx;
    const EngineSource *source;
    const EngineTarget *target;
    FittedRects rects;
    int32_t from;    // field order signs
    int32_t to;
    int32_t q;

    const Z_VID_PROPS &Sp() const { return *source->props; }
    const Z_VID_PROPS &Tp() const { return *target->props; }
    bool FieldsWanted() const { return target->first != nullptr || target->second != nullptr; }
    bool Straight() const {
        return !FieldsWanted() && SameSize(rects.source, rects.target) && (from == 0 || std::abs(from) == std::abs(to));
    }
    // Lines by which the picture moves when one field order becomes the other; above 0 it moves down in memory.
    int32_t Move() const {
        if (from == 0 || to == 0) return 0;
        return (from - to) * (IsRgbFormat(Tp().fccType) && Tp().nHeight > 0 ? -1 : 1);
    }
};

HRESULT CheckRecord(const Z_VID_PROPS *p, int64_t bytes) {
    if (p == nullptr) return E_POINTER;
    if (p->nWidth < 1 || p->nHeight == 0 || p->nHeight == INT32_MIN || p->nRowBytes < 1) return E_UNEXPECTED;
    return VideoBytesNeeded(*p) > bytes ? kVfwEInvalidMediaType : S_OK;
}

HRESULT Begin(Job *job) {
    const EngineTarget &t = *job->target;
    if (job->ctx == nullptr || job->source->p == nullptr) return E_POINTER;
    if (t.dst == nullptr && t.first == nullptr && t.second == nullptr) return E_POINTER;
    if (job->source->props == nullptr || t.props == nullptr) return E_POINTER;
    HRESULT hr = CheckRecord(job->source->props, job->source->bytes);
    if (hr == S_OK) hr = CheckRecord(t.props, t.bytes);
    if (hr != S_OK) return hr;
    job->rects = FitRects(job->Sp(), job->Tp());
    job->from = FieldOrderSign(job->source->props);
    job->to = FieldOrderSign(t.props);
    return S_OK;
}

// A thread costs more than the rows of so many pixels.
constexpr int64_t kPixelsForTwo = 256 * 1024;

// Rows 0 to `rows` - 1 by `upper(y0, y1)`, or, with a pool, those of the lower half by `lower(y0, y1)`. The bound between them
// is a multiple of four, so that rows that share chroma stay together.
template <class Upper, class Lower>
void RunHalves(WorkerPool *pool, int32_t rows, Upper upper, Lower lower) {
    if (pool == nullptr) return upper(0, rows);
    const int32_t half = rows / 2 & ~3;
    pool->Run(2, [&](int32_t band) {
        if (band == 0)
            upper(0, half);
        else
            lower(half, rows);
        return S_OK;
    });
}

// Both rectangles as images of their own, converted as they stand.
HRESULT StraightPath(const Job &job) {
    Z_VID_PROPS sp = job.Sp();
    Z_VID_PROPS tp = job.Tp();
    const int64_t from = SubRectView(sp, job.rects.source);
    const int64_t to = SubRectView(tp, job.rects.target);
    ConvertPlan plan;
    const HRESULT hr = plan.Prepare(&sp, job.source->bytes - from, &tp, job.target->bytes - to);
    if (hr != S_OK) return hr;
    plan.RowRoomSet(job.target->rowRoom);
    const bool smaller = tp.nWidth < job.Tp().nWidth || Rows(tp) < Rows(job.Tp());
    if (smaller) FillImage(&job.Tp(), job.target->dst, 0, 1.0);
    const bool large = int64_t{plan.Width()} * plan.Rows() >= kPixelsForTwo;
    if (!plan.RowsIndependent() || !large) return plan.Run(job.source->p + from, job.target->dst + to);
    const auto run = [&](int32_t y0, int32_t y1) { plan.RunRows(job.source->p + from, job.target->dst + to, y0, y1); };
    RunHalves(job.ctx->pool, plan.Rows(), run, run);
    return S_OK;
}

// Of `memory` with the record's format and rows; `rows` may be those of a field.
HRESULT OpenImage(const uint8_t *memory, int64_t bytes, const Z_VID_PROPS &p, int32_t height, const tagRECT &rc,
                  ScaleImage *image) {
    ImageLayout layout;
    if (!ImageLayoutMake(p.fccType, p.nWidth, height, p.nRowBytes, &layout) || layout.bytes > bytes)
        return kVfwEInvalidMediaType;
    *image = ScaleImageMake(memory, layout);
    image->SetPart(rc);
    return S_OK;
}

// What no field of a target has written counts as 0 in its planes: a last odd row, the chroma behind the last whole pair.
void ClearRest(const ScaleImage &target) {
    const int32_t planes = Is420(target.kind) ? (target.kind == PixelClass::Nv12 ? 2 : 3) : 1;
    for (int32_t i = 0; i < planes; ++i) {
        const PlaneArea area = target.Whole(i);
        const int32_t half = i == 0 ? target.rows / 2 : target.rows / 2 / 2;
        const int64_t pixel = i == 0 ? PixelBytes(target.kind) : target.kind == PixelClass::Nv12 ? 2 : 1;
        const int64_t width = Is420(target.kind) ? area.width : area.width & ~1;
        for (int32_t y = 2 * half; y < area.rows; ++y)
            std::memset(target.plane[i] + y * target.step[i], 0, static_cast<size_t>(width * pixel));
    }
}

// The picture in its memory by one line, the edge row repeated.
void MoveRows(const Job &job) {
    const Z_VID_PROPS &p = job.Tp();
    const int32_t move = job.Move();
    if (move == 0) return;
    const int64_t step = p.nRowBytes;
    const int64_t row = std::min<int64_t>(RowBytes(p.fccType, p.nWidth), step);
    const int64_t last = Rows(p) - 1;
    const auto copy = [&](int64_t to, int64_t from) {
        const int64_t room = job.target->bytes - std::max(to, from) * step;
        std::memcpy(job.target->dst + to * step, job.target->dst + from * step, static_cast<size_t>(std::min(row, room)));
    };
    if (move < 0)
        for (int64_t n = 0; n < last; ++n) copy(n, n + 1);
    else
        for (int64_t n = last; n > 0; --n) copy(n, n - 1);
}

HRESULT Resize(const Job &job, const ScaleImage &from, const ScaleImage &to) {
    const int32_t chroma = std::min<int32_t>(job.q, kResizeLinear);
    PlaneScaler &upper = job.ctx->scaler;
    PlaneScaler &lower = job.ctx->lower;
    const HRESULT hr = upper.Prepare(from, to, job.q, chroma);
    if (hr != S_OK) return hr;
    WorkerPool *pool = job.ctx->pool;
    const int64_t pixels = std::max(int64_t{from.width} * from.rows, int64_t{to.width} * to.rows);
    if (pool != nullptr && (pixels < kPixelsForTwo || lower.Prepare(from, to, job.q, chroma) != S_OK)) pool = nullptr;
    RunHalves(
        pool, upper.Rows(), [&](int32_t y0, int32_t y1) { upper.Run(y0, y1); },
        [&](int32_t y0, int32_t y1) { lower.Run(y0, y1); });
    return S_OK;
}

// Field by field; targets that are made of planes also give their fields away.
HRESULT FieldsToFields(const Job &job, const ScaleImage &source, int32_t firstParity) {
    const EngineTarget &t = *job.target;
    ScaleImage target;
    HRESULT hr = OpenImage(t.dst, t.bytes, job.Tp(), job.Tp().nHeight, job.rects.target, &target);
    for (int32_t parity = 0; hr == S_OK && parity < 2; ++parity)
        hr = Resize(job, SplitField(source, parity), SplitField(target, parity));
    if (hr != S_OK) return hr;
    if (!target.Rgb()) ClearRest(target);
    MoveRows(job);
    if (target.Rgb()) return S_OK;
    uint8_t *const outputs[2] = {t.first, t.second};
    for (int32_t i = 0; i < 2; ++i) {
        if (outputs[i] == nullptr) continue;
        const int32_t parity = i == 0 ? firstParity : 1 - firstParity;
        ScaleImage field;
        hr = OpenImage(outputs[i], t.bytes, job.Tp(), job.Tp().nHeight / 2, job.rects.target, &field);
        if (hr != S_OK) return hr;
        std::copy_n(SplitField(target, parity).part, 3, field.part);
        hr = Resize(job, SplitField(source, parity), field);
        if (hr != S_OK) return hr;
    }
    return S_OK;
}

// A whole picture of each field that is asked for.
HRESULT FieldsToPictures(const Job &job, const ScaleImage &source, int32_t firstParity) {
    const EngineTarget &t = *job.target;
    uint8_t *const outputs[2] = {job.FieldsWanted() ? t.first : t.dst, t.second};
    for (int32_t i = 0; i < 2; ++i) {
        if (outputs[i] == nullptr) continue;
        ScaleImage target;
        HRESULT hr = OpenImage(outputs[i], t.bytes, job.Tp(), job.Tp().nHeight, job.rects.target, &target);
        if (hr == S_OK) hr = Resize(job, SplitField(source, i == 0 ? firstParity : 1 - firstParity), target);
        if (hr != S_OK) return hr;
    }
    return S_OK;
}

HRESULT Frame2(const Job &job) {
    HRESULT straight = kVfwEInvalidSubtype;
    if (job.Straight()) {
        straight = StraightPath(job);
        if (straight == S_OK) return S_OK;
    }
    if (!ColorConvertServes(job.Sp().fccType, job.Tp().fccType)) return straight;
    ScaleImage source;
    const HRESULT hr = OpenImage(job.source->p, job.source->bytes, job.Sp(), job.Sp().nHeight, job.rects.source, &source);
    if (hr != S_OK) return hr;
    if (job.from == 0 && job.target->dst != nullptr) {
        ScaleImage target;
        const HRESULT opened =
            OpenImage(job.target->dst, job.target->bytes, job.Tp(), job.Tp().nHeight, job.rects.target, &target);
        return opened == S_OK ? Resize(job, source, target) : opened;
    }
    const int32_t firstParity = job.from > 0 ? 0 : 1;
    if (job.to != 0 && job.target->dst != nullptr) return FieldsToFields(job, source, firstParity);
    return FieldsToPictures(job, source, firstParity);
}

// One output of the high-quality engine.
struct Output {
    uint8_t *p;
    int32_t mode;     // of the four states
    int32_t flags;    // field selection and line shift
};

int32_t FieldMode(int32_t order, bool first) {
    if (order == 0) return 0;
    return (order > 0) == first ? 2 : 3;
}

Output OutputOf(const Job &job, uint8_t *p, int32_t mode) {
    const int32_t selection = mode == 2 ? kScaleFirstField : mode == 3 ? kScaleSecondField : 0;
    const int32_t move = job.Move();
    return {p, mode, selection | (move > 0 ? kScaleLineDown : move < 0 ? kScaleLineUp : 0)};
}

HRESULT Make(const Job &job, const Output &output) {
    const auto view = [](const Z_VID_PROPS &p, int64_t bytes) {
        return ImageView{{p.fccType, p.nWidth, p.nHeight, 0}, p.nRowBytes, bytes};
    };
    const ImgConvertJob work = {output.mode != 0, job.q, 0, output.flags};
    const HRESULT hr = Img_Convert(&job.ctx->mode[output.mode], job.source->p, output.p, view(job.Sp(), job.source->bytes),
                                   view(job.Tp(), job.target->bytes), &job.rects.source, &job.rects.target, work);
    return FAILED(hr) ? hr : S_OK;
}

// Black, alpha and all; formats without a fill become 0.
void Blacken(const Job &job, uint8_t *p, int64_t bytes) {
    const PixelClass kind = PixelClassOf(job.Tp().fccType);
    if (Is420(kind) || kind == PixelClass::Yvyu || kind == PixelClass::None)
        std::memset(p, 0, static_cast<size_t>(bytes));
    else
        FillPlain(job.Tp().fccType, p, bytes, 0);
}

HRESULT Frame3(const Job &job) {
    HRESULT straight = kVfwEInvalidSubtype;
    if (job.Straight()) {
        straight = StraightPath(job);
        if (straight == S_OK) return S_OK;
    }
    const bool plain = job.Sp().fccType == eZFCC_RGB8 && job.Tp().fccType == eZFCC_RGB8;
    if (!plain && !ColorConvertServes(job.Sp().fccType, job.Tp().fccType)) return straight;
    const EngineTarget &t = *job.target;
    const int64_t bytes = std::min<int64_t>(FrameBufferSize(t.props), t.bytes);
    const int32_t both = job.from != 0 && job.to != 0 ? 1 : FieldMode(job.from, true);
    const Output outputs[3] = {OutputOf(job, t.dst, both), OutputOf(job, t.first, FieldMode(job.from, true)),
                               OutputOf(job, t.second, FieldMode(job.from, false))};
    for (const Output &output : outputs)
        if (output.p != nullptr && !Whole(job.rects.target, job.Tp())) Blacken(job, output.p, bytes);
    for (int32_t i = 0; i < 3; ++i) {
        const Output &output = outputs[i];
        if (output.p == nullptr) continue;
        const auto same = [&](const Output &o) { return &o < &output && o.p != nullptr && o.mode == output.mode; };
        const Output *const made = std::find_if(outputs, outputs + i, same);
        if (made != outputs + i) {
            std::memcpy(output.p, made->p, static_cast<size_t>(bytes));
            continue;
        }
        const HRESULT hr = Make(job, output);
        if (hr != S_OK) return hr;
    }
    return S_OK;
}

}    // namespace

HRESULT ConvertFrame2(FieldConverter *ctx, const EngineSource &source, const EngineTarget &target, int32_t q) {
    Job job = {ctx, &source, &target, {}, 0, 0, q};
    const HRESULT hr = Begin(&job);
    return hr == S_OK ? Guarded([&] { return Frame2(job); }) : hr;
}

HRESULT ConvertFrame3(FieldConverter *ctx, const EngineSource &source, const EngineTarget &target, int32_t q) {
    Job job = {ctx, &source, &target, {}, 0, 0, q};
    const HRESULT hr = Begin(&job);
    return hr == S_OK ? Guarded([&] { return Frame3(job); }) : hr;
}

}    // namespace zck
