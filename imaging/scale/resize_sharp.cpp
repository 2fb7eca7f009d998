#include "imaging/scale/resize_sharp.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frames/media/pixel_format.h"
#include "imaging/primitives/copy.h"
#include "imaging/primitives/row_kernels.h"
#include "imaging/scale/filter.h"
#include "platform/status.h"

namespace zck {
namespace {

// An image of a stage, rows in the order of the memory.
struct Stage {
    uint8_t *p;
    int64_t step;
    int32_t width;
    int32_t height;    // signed

    int32_t Rows() const { return std::abs(height); }
    Stage Field(int32_t parity) const { return {p + parity * step, 2 * step, width, Rows() / 2}; }
};

struct Job {
    PlaneResizer *worker;
    eZFCC fcc;
    int32_t pixel;
    bool bInterlaced;
    ScaleOptions options;

    // Bottom-up images are walked upwards; RGB8 has no order.
    int32_t SignedRows(const Stage &s) const { return fcc == eZFCC_RGB8 ? s.Rows() : -s.height; }
};

HRESULT Failure(int32_t status) {
    if (status == kPrimitiveOk) return S_OK;
    return status == kPrimitiveNoMemory ? E_OUTOFMEMORY : StatusOf(static_cast<uint32_t>(status) | 0x80000000);
}

int32_t PixelOf(eZFCC fcc) {
    switch (fcc) {
        case eZFCC_RGB8:
            return 1;
        case eZFCC_RGB24:
            return 3;
        case eZFCC_RGB32:
        case eZFCC_ARGB32:
            return 4;
        default:
            return 0;
    }
}

HRESULT Open(const uint8_t *p, const ImageView &view, int32_t pixel, Stage *stage) {
    const ImgDesc &d = view.desc;
    if (d.nWidth < 1 || d.nHeight == 0 || d.nHeight == INT32_MIN) return E_INVALIDARG;
    const int64_t row = int64_t{d.nWidth} * pixel;
    if (view.rowBytes < row) return E_INVALIDARG;
    *stage = {const_cast<uint8_t *>(p), view.rowBytes, d.nWidth, d.nHeight};
    return (stage->Rows() - 1) * view.rowBytes + row > view.bytes ? kVfwEInvalidMediaType : S_OK;
}

Stage Scratch(const Job &job, int32_t which, int32_t width, int32_t height, bool clear) {
    const int64_t row = RowBytes(job.fcc, width);
    const auto bytes = static_cast<size_t>(row * std::abs(height));
    std::vector<uint8_t> &memory = job.worker->scratch[which];
    if (memory.size() < bytes) memory.resize(bytes);
    if (clear) std::fill(memory.begin(), memory.end(), uint8_t{0});
    return {memory.data(), row, width, height};
}

FilterKernel KernelOf(int32_t sharpen, bool rowOnly) {
    FilterKernel k = {{}, {3, 3}, {1, 1}, 0};
    const int32_t c = sharpen >= 0 ? 60 - sharpen : sharpen + 52;
    const int32_t blur[9] = {1, 2, 1, 2, c, 2, 1, 2, 1};
    for (int32_t i = 0; i < 9; ++i) k.weight[i] = sharpen >= 0 ? (i == 4 ? c : -1) : blur[i];
    k.divisor = sharpen >= 0 ? c - 8 : c + 12;
    if (!rowOnly) return k;
    std::copy_n(k.weight + 3, 3, k.weight);
    k.size.height = 1;
    k.anchor.height = 0;
    k.divisor += sharpen >= 0 ? 6 : -8;
    return k;
}

int32_t ResizeRows(const Job &job, const Stage &from, const Stage &to) {
    PlaneResizer &w = *job.worker;
    const int32_t channels = job.pixel == 1 ? 1 : 4;
    const ResizeShape shape = {{from.width, from.Rows()}, {to.width, to.Rows()}, channels, job.options.nQuality};
    if (job.pixel != 3) return ResizeImage(&w.resize, shape, from.p, from.step, to.p, to.step);
    const int32_t status = w.resize.Prepare(shape);
    if (status != kPrimitiveOk) return status;
    ScaleImage image;
    image.kind = PixelClass::Rgb24;
    image.plane[0] = from.p;
    image.step[0] = from.step;
    image.width = from.width;
    image.rows = from.Rows();
    w.pixels.Open(image, ReadAs::Pixels, w.resize.RowsAtOnce());
    w.row.resize(static_cast<size_t>(to.width) * 4);
    const auto row = [](void *owner, int32_t y) { return static_cast<PlaneRows *>(owner)->Row(0, y); };
    for (int32_t y = 0; y < to.Rows(); ++y) {
        w.resize.Row(y, {row, &w.pixels}, w.row.data());
        PrimitiveKernelsGet().drop_alpha(to.p + y * to.step, w.row.data(), to.width);
    }
    return kPrimitiveOk;
}

HRESULT ResizeColumns(const Job &job, const Stage &from, const Stage &to) {
    const int32_t q = job.options.nQuality;
    const bool byField = job.worker->bHalvesInParallel || (job.bInterlaced && q >= 5 && q != kResizeCatmullRom);
    if (!byField) return Failure(ResizeRows(job, from, to));
    for (int32_t parity = 0; parity < 2; ++parity) {
        const int32_t status = ResizeRows(job, from.Field(parity), to.Field(parity));
        if (status != kPrimitiveOk) return Failure(status);
    }
    return S_OK;
}

HRESULT Sharpen(const Job &job, const Stage &from, const Stage &to, bool rowOnly) {
    const FilterKernel kernel = KernelOf(job.options.nSharpen, rowOnly);
    const int32_t fields = job.bInterlaced && kernel.size.height == 3 ? 2 : 1;
    const ROI size = {to.width - (kernel.size.width + 1) / 2, to.Rows() / fields - (kernel.size.height + 1) / 2};
    for (int32_t f = 0; f < fields; ++f) {
        const int64_t row = f + (kernel.size.height == 3 ? fields : 0);
        const int32_t status = Filter_8u(from.p + row * from.step + job.pixel, fields * from.step,
                                         to.p + row * to.step + job.pixel, fields * to.step, size, job.pixel, kernel);
        if (status != kPrimitiveOk) return Failure(status);
    }
    return S_OK;
}

HRESULT Run(const Job &job, const Stage &source, const Stage &target) {
    const ScaleOptions &o = job.options;
    Stage stage = source;
    bool written = false;
    const bool columns = source.width != target.width;
    const bool rows = job.SignedRows(source) != job.SignedRows(target) || o.nFlags != 0;
    if (rows) {
        written = !columns && o.nSharpen == 0;
        const Stage next = written ? target : Scratch(job, 0, source.width, target.height, false);
        const HRESULT hr = Scale_Dyn(&job.worker->dyn, source.p, next.p, job.SignedRows(source), job.SignedRows(next),
                                     source.width * job.pixel, source.step, next.step, o.dblFactor, o.nFlags);
        if (hr != S_OK) return hr;
        stage = next;
    }
    if (columns) {
        written = o.nSharpen == 0;
        const Stage next = written ? target : Scratch(job, 1, target.width, target.height, true);
        const HRESULT hr = ResizeColumns(job, stage, next);
        if (hr != S_OK) return hr;
        stage = next;
    }
    if (o.nSharpen != 0) return Sharpen(job, stage, target, rows);
    if (!written) Copy_8u_C1R(stage.p, stage.step, target.p, target.step, {target.width * job.pixel, target.Rows()});
    return S_OK;
}

}    // namespace

HRESULT SEH_Resize_n_Sharp(PlaneResizer *worker, const uint8_t *src, uint8_t *dst, const ImageView *source,
                           const ImageView *target, bool bInterlaced, const ScaleOptions *options) {
    if (worker == nullptr || src == nullptr || dst == nullptr || source == nullptr || target == nullptr || options == nullptr)
        return E_POINTER;
    const eZFCC fcc = source->desc.fcc;
    Job job = {worker, fcc, PixelOf(fcc), bInterlaced, *options};
    if (fcc != target->desc.fcc || job.pixel == 0) return E_INVALIDARG;
    job.options.nSharpen = std::clamp(options->nSharpen, -50, 50);
    if (!bInterlaced) job.options.nFlags |= kScaleProgressive;
    Stage from = {};
    Stage to = {};
    HRESULT hr = Open(src, *source, job.pixel, &from);
    if (hr == S_OK) hr = Open(dst, *target, job.pixel, &to);
    return hr != S_OK ? hr : Guarded([&] { return Run(job, from, to); });
}

}    // namespace zck
