// Frames of 1920 by 1080 converted, in copies: the time against that of a plain copy of the source as a 32-bit frame.
//   one    buffer to buffer on one thread, processor time
//   frame  `FrameConvert`, result from the pool included, processor time of all its threads
//   two    `FrameConvert` by the clock, the fastest round of each: what two free processors give
//   sws    libswscale, packed to packed, one thread; zimg: planes to planes, one thread; a dash where they do not do it
// The number is the quality. All works of a line take turns.
#include <string>

#include "bench/imaging/colour/frames.h"
#include "bench/imaging/convert/scaler_peers.h"
#include "frames/factory/factory.h"
#include "frames/views/f_factory.h"
#include "frames/views/frames_i.h"
#include "imaging/convert/convert_bits.h"
#include "platform/com_ptr.h"
#include "platform/text.h"

namespace zck {
namespace {

struct Case {
    const char *name;
    eZFCC from;
    eZFCC to;
    int32_t width;
    int32_t height;
    int32_t quality;
    eZInterlace scan = eZI_Progressive;
    const char *options = "";
};

constexpr Case kCases[] = {
    {"UYVY_UYVY_720p/4", eZFCC_UYVY, eZFCC_UYVY, 1280, 720, 4},
    {"HDYC_HDYC_720p/4", eZFCC_HDYC, eZFCC_HDYC, 1280, 720, 4},
    {"ARGB32_ARGB32_720p/4", eZFCC_ARGB32, eZFCC_ARGB32, 1280, 720, 4},
    {"UYVY_ARGB32_720p/4", eZFCC_UYVY, eZFCC_ARGB32, 1280, 720, 4},
    {"UYVY_UYVY_720p/8", eZFCC_UYVY, eZFCC_UYVY, 1280, 720, 8},
    {"ARGB32_ARGB32_720p/8", eZFCC_ARGB32, eZFCC_ARGB32, 1280, 720, 8},
    {"UYVY_UYVY_rows/14", eZFCC_UYVY, eZFCC_UYVY, 1920, 720, 14},
    {"UYVY_ARGB32_1080p/4", eZFCC_UYVY, eZFCC_ARGB32, 1920, 1080, 4},
    {"UYVY_UYVY_fields_576/4", eZFCC_UYVY, eZFCC_UYVY, 720, 576, 4, eZI_Field1First},
    {"ARGB32_turned/4", eZFCC_ARGB32, eZFCC_ARGB32, 1080, 1920, 4, eZI_Progressive, " rotate=left"},
    {"ARGB32_mirrored/4", eZFCC_ARGB32, eZFCC_ARGB32, 1920, 1080, 4, eZI_Progressive, " mirror=horz"},
    {"UYVY_UYVY_same/4", eZFCC_UYVY, eZFCC_UYVY, 1920, 1080, 4},
};

Z_VID_PROPS Sized(eZFCC fcc, int32_t width, int32_t height, eZInterlace scan) {
    Z_VID_PROPS p = {};
    p.fccType = fcc;
    p.nWidth = width;
    p.nHeight = IsRgbFormat(fcc) ? -height : height;
    p.nRowBytes = RowBytes(fcc, width);
    p.eScaleType = eZST_None;
    p.eInterlace = scan;
    return p;
}

bench::FrameWork BufferWork(const Case &c) {
    if (*c.options != '\0') return {};
    return [&c](std::size_t round) {
        static FieldConverter ctx;
        const Z_VID_PROPS sp = Sized(c.from, kWidth, kHeight, c.scan), tp = Sized(c.to, c.width, c.height, c.scan);
        ConvertBits(&ctx, {Sources()[round % bench::kRing].data(), kFrameBytes, &sp},
                    {Targets()[round % bench::kRing].data(), nullptr, nullptr, kFrameBytes, &tp}, c.quality, -1);
    };
}

struct Frames {
    ComPtr<IZFrames> factory;
    ComPtr<IZFrame> source[bench::kRing];
    Bstr options;
};

bench::FrameWork FrameWork(const Case &c) {
    const auto f = std::make_shared<Frames>();
    FrameFactoryCreate(ZIidOf<IZFrames>(), f->factory.PutVoid());
    Z_VID_PROPS sp = Sized(c.from, kWidth, kHeight, c.scan);
    for (auto &frame : f->source) {
        const auto address = static_cast<int64_t>(reinterpret_cast<uintptr_t>(Sources()[0].data()));
        f->factory->FrameCreateFromProps(&sp, address, frame.Put(), nullptr);
    }
    f->options = Bstr(TextFromUtf8("scaling_quality=" + std::to_string(c.quality) + c.options));
    return [f, &c](std::size_t round) {
        Z_VID_PROPS tp = Sized(c.to, c.width, c.height, c.scan);
        ComPtr<IZFrame> result;
        f->source[round % bench::kRing]->FrameConvert(&tp, result.Put(), f->options.get());
    };
}

void Run(benchmark::State &state, const Case &c) {
    bench::CopiedFrames copied(kFrameBytes);
    bench::Samples copies, buffers, frames, sws, zimg;
    const bench::FrameWork buffer = BufferWork(c), frame = FrameWork(c);
    const bool scales = *c.options == '\0' && c.scan == eZI_Progressive;
    const bench::FrameWork a = scales ? SwscaleWork(c.from, c.to, c.width, c.height, c.quality % 10) : bench::FrameWork();
    const bench::FrameWork b = scales ? ZimgWork(c.from, c.to, c.width, c.height, c.quality % 10) : bench::FrameWork();
    const double enough = bench::Quick() ? 0.05 : 1;
    for ([[maybe_unused]] auto _ : state) {
        for (std::size_t round = 0; round < 5 || copies.Total() + frames.Total() < enough; ++round) {
            copies.Time([&] { copied.Copy(round); });
            if (buffer) buffers.Time([&] { buffer(round); });
            frames.Time([&] { frame(round); });
            if (a) sws.Time([&] { a(round); });
            if (b) zimg.Time([&] { b(round); });
        }
    }
    const double copy = copies.Processor();
    state.counters["one"] = buffer ? buffers.Processor() / copy : 0;
    state.counters["frame"] = frames.Processor() / copy;
    state.counters["two"] = frames.BestWall() / copies.BestWall();
    state.counters["sws"] = a ? sws.Processor() / copy : 0;
    state.counters["zimg"] = b ? zimg.Processor() / copy : 0;
    state.counters["copy_ms"] = 1e3 * copy;
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    for (const zck::Case &c : zck::kCases)
        benchmark::RegisterBenchmark(c.name, [&c](benchmark::State &state) { zck::Run(state, c); })->Iterations(1);
    return zck::bench::Main(argc, argv);
}
