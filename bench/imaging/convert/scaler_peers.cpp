#include "bench/imaging/convert/scaler_peers.h"

#include <zimg.h>

#include <cstdlib>
#include <memory>

#include "bench/imaging/colour/frames.h"

extern "C" {
#include <libswscale/swscale.h>
}

namespace zck {
namespace {

AVPixelFormat SwsFormat(eZFCC fcc) {
    if (fcc == eZFCC_ARGB32) return AV_PIX_FMT_BGRA;
    return fcc == eZFCC_UYVY || fcc == eZFCC_HDYC ? AV_PIX_FMT_UYVY422 : AV_PIX_FMT_NONE;
}

int SwsKernel(int32_t quality) { return quality == 8 ? SWS_AREA : quality == 9 ? SWS_LANCZOS : SWS_BICUBIC; }

zimg_resample_filter_e ZimgKernel(int32_t quality) {
    // Its bilinear kernel is as wide as the reduction: the nearest to a mean over areas.
    return quality == 8 ? ZIMG_RESIZE_BILINEAR : quality == 9 ? ZIMG_RESIZE_LANCZOS : ZIMG_RESIZE_BICUBIC;
}

struct Free {
    void operator()(void *p) const { std::free(p); }
};
using Block = std::unique_ptr<void, Free>;

constexpr size_t kAlign = 64;
Block Aligned(size_t bytes) { return Block(std::aligned_alloc(kAlign, (bytes + kAlign - 1) / kAlign * kAlign)); }

constexpr ptrdiff_t kPlaneStride = 2048;

struct Graph {
    zimg_filter_graph *graph = nullptr;
    Block temporary;
    Block from[bench::kRing];
    Block to;
    int32_t height = 0;
    ~Graph() { zimg_filter_graph_free(graph); }
};

zimg_image_format ZimgFormat(eZFCC fcc, int32_t width, int32_t height) {
    zimg_image_format f;
    zimg_image_format_default(&f, ZIMG_API_VERSION);
    const bool rgb = fcc == eZFCC_ARGB32;
    f.width = static_cast<unsigned>(width);
    f.height = static_cast<unsigned>(height);
    f.pixel_type = ZIMG_PIXEL_BYTE;
    f.subsample_w = rgb ? 0 : 1;
    f.color_family = rgb ? ZIMG_COLOR_RGB : ZIMG_COLOR_YUV;
    f.matrix_coefficients = rgb ? ZIMG_MATRIX_RGB : ZIMG_MATRIX_BT470_BG;
    f.pixel_range = rgb ? ZIMG_RANGE_FULL : ZIMG_RANGE_LIMITED;
    return f;
}

}    // namespace

bench::FrameWork SwscaleWork(eZFCC from, eZFCC to, int32_t width, int32_t height, int32_t quality) {
    const AVPixelFormat a = SwsFormat(from), b = SwsFormat(to);
    if (a == AV_PIX_FMT_NONE || b == AV_PIX_FMT_NONE) return {};
    const std::shared_ptr<SwsContext> context(
        sws_getContext(kWidth, kHeight, a, width, height, b, SwsKernel(quality), nullptr, nullptr, nullptr), sws_freeContext);
    if (!context) return {};
    const int fromStride = RowBytes(from, kWidth), toStride = RowBytes(to, width);
    return [=](std::size_t round) {
        const uint8_t *const src[4] = {Sources()[round % bench::kRing].data()};
        uint8_t *const dst[4] = {Targets()[round % bench::kRing].data()};
        const int srcStride[4] = {fromStride}, dstStride[4] = {toStride};
        sws_scale(context.get(), src, srcStride, 0, kHeight, dst, dstStride);
    };
}

bench::FrameWork ZimgWork(eZFCC from, eZFCC to, int32_t width, int32_t height, int32_t quality) {
    const auto g = std::make_shared<Graph>();
    const zimg_image_format a = ZimgFormat(from, kWidth, kHeight), b = ZimgFormat(to, width, height);
    zimg_graph_builder_params params;
    zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
    params.resample_filter = ZimgKernel(quality);
    params.resample_filter_uv = ZIMG_RESIZE_BILINEAR;
    params.cpu_type = ZIMG_CPU_AUTO;
    g->graph = zimg_filter_graph_build(&a, &b, &params);
    size_t bytes = 0;
    if (g->graph == nullptr || zimg_filter_graph_get_tmp_size(g->graph, &bytes) != ZIMG_ERROR_SUCCESS) return {};
    g->temporary = Aligned(bytes);
    for (Block &block : g->from) {
        block = Aligned(3 * kPlaneStride * kHeight);
        std::copy_n(Sources()[0].data(), 3 * kPlaneStride * kHeight, static_cast<uint8_t *>(block.get()));
    }
    g->to = Aligned(static_cast<size_t>(3 * kPlaneStride * height));
    return [g, height](std::size_t round) {
        zimg_image_buffer_const src = {ZIMG_API_VERSION, {}};
        zimg_image_buffer dst = {ZIMG_API_VERSION, {}};
        for (int i = 0; i < 3; ++i) {
            src.plane[i] = {static_cast<uint8_t *>(g->from[round % bench::kRing].get()) + i * kPlaneStride * kHeight,
                            kPlaneStride, ZIMG_BUFFER_MAX};
            dst.plane[i] = {static_cast<uint8_t *>(g->to.get()) + i * kPlaneStride * height, kPlaneStride, ZIMG_BUFFER_MAX};
        }
        zimg_filter_graph_process(g->graph, &src, &dst, g->temporary.get(), nullptr, nullptr, nullptr, nullptr);
    };
}

}    // namespace zck
