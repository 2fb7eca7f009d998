// Two records of any contents over two small memories: scaled by both engines, turned, mirrored and woven, with the reference
// kernels and with the best ones, which must agree. Nothing behind or before a target may change. The first byte says
// what is done, the next ones are the records (see `RecordOf`); the rest is the source's pixels.
#include <algorithm>
#include <cstring>
#include <vector>

#include "frames/media/pixel_format.h"
#include "fuzz/support/foreign_text.h"
#include "imaging/engines/convert_frame.h"
#include "imaging/geometry/mirror_bits.h"
#include "imaging/geometry/rotate_bits.h"
#include "imaging/geometry/weave_fields.h"
#include "platform/processor.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr eZFCC kFormats[] = {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_YVYU,   eZFCC_I420,  eZFCC_YV12,
                              eZFCC_NV12, eZFCC_v210, eZFCC_r210, eZFCC_RGB24,  eZFCC_RGB32, eZFCC_ARGB32,
                              eZFCC_RGB8, kFccRgb565, kFccY422,   eZFCC_Default};
constexpr int32_t kQualities[] = {1, 2, 4, 5, 6, 7, 8, 16, 0, 3, -1, 17};
constexpr int32_t kOdd[] = {0, 1, -1, 2, 65535, 65536, INT32_MAX, INT32_MIN, 1 << 30, -(1 << 30)};
constexpr size_t kGuard = 64;
constexpr size_t kMostBytes = size_t{64} * 1024;

// The bytes from the front, zeros behind their end.
struct Input {
    const uint8_t *data;
    size_t size;
    uint8_t Next() {
        if (size == 0) return 0;
        --size;
        return *data++;
    }
    // A small number, or one that is asking for trouble.
    int32_t Number(int32_t most) {
        const uint8_t b = Next();
        return b >= 240 ? kOdd[Next() % std::size(kOdd)] : b % most;
    }
};

// Format; width; height; its sign and the scan; extra row bytes, or any; scale type; aspect; size of the memory.
struct Record {
    Z_VID_PROPS props = {};
    size_t bytes = 0;
};

Record RecordOf(Input &in) {
    Record r;
    Z_VID_PROPS &p = r.props;
    p.fccType = kFormats[in.Next() % std::size(kFormats)];
    p.nWidth = in.Number(90);
    p.nHeight = in.Number(60);
    const uint8_t bits = in.Next();
    if ((bits & 1) != 0 && p.nHeight != INT32_MIN) p.nHeight = -p.nHeight;
    constexpr eZInterlace kScans[] = {eZI_Progressive, eZI_Field1First, eZI_Field2First, eZI_Progressive};
    p.eInterlace = kScans[bits >> 1 & 3];
    const uint8_t extra = in.Next();
    p.nRowBytes = extra >= 240 ? in.Number(200) : RowBytes(p.fccType, p.nWidth);
    if (extra < 64) p.nRowBytes = static_cast<int32_t>(std::min<int64_t>(int64_t{p.nRowBytes} + extra, INT32_MAX));
    p.eScaleType = static_cast<eZScaleType>(in.Next() % 6);
    p.nAspectX = static_cast<int16_t>(in.Number(20));
    p.nAspectY = static_cast<int16_t>(in.Number(20));
    const int64_t rows = std::abs(static_cast<int64_t>(p.nHeight));
    const int64_t row = std::clamp<int64_t>(p.nRowBytes, 0, 1 << 20);
    const int64_t whole = std::min<int64_t>(rows, 1 << 20) * row * (IsPlanarFormat(p.fccType) ? 3 : 2) / 2;
    const auto enough = static_cast<size_t>(std::clamp<int64_t>(whole, 1, kMostBytes));
    // The whole picture mostly, else some of it.
    const uint8_t cut = in.Next();
    r.bytes = cut < 200 ? enough : std::max<size_t>(1, enough * (cut - 200) / 56);
    return r;
}

struct Case {
    uint8_t work;
    int32_t quality;
    Record source;
    Record target;
    Bytes pixels;
};

// The three outputs, each between guards.
struct Result {
    HRESULT hr = S_OK;
    Bytes memory[3];
};

struct Kept {
    FieldConverter converter;
    RotateScratch rotate;
};

Result Run(const Case &c, KernelLevel level) {
    static Kept s_kept;
    KernelLevelLimit(level);
    Result result;
    for (Bytes &m : result.memory) m.assign(c.target.bytes + 2 * kGuard, 0xA5);
    uint8_t *const out[3] = {result.memory[0].data() + kGuard, result.memory[1].data() + kGuard,
                             result.memory[2].data() + kGuard};
    const auto srcBytes = static_cast<int64_t>(c.pixels.size());
    const auto dstBytes = static_cast<int64_t>(c.target.bytes);
    const Z_VID_PROPS &sp = c.source.props;
    const Z_VID_PROPS &tp = c.target.props;
    const int32_t wanted = (c.work >> 4) % 8;
    const EngineTarget target = {wanted % 2 == 0 ? out[0] : nullptr, (wanted & 2) != 0 ? out[1] : nullptr,
                                 (wanted & 4) != 0 ? out[2] : nullptr, dstBytes, &tp};
    const EngineSource source = {c.pixels.data(), srcBytes, &sp};
    switch (c.work % 8) {
        case 0:
        case 1:
        case 2:
            result.hr = ConvertFrame2(&s_kept.converter, source, target, c.quality);
            break;
        case 3:
        case 4:
            result.hr = ConvertFrame3(&s_kept.converter, source, target, c.quality);
            break;
        case 5:
            result.hr = RotateBits(&s_kept.rotate, c.pixels.data(), srcBytes, out[0], dstBytes, &sp, &tp, wanted % 2 != 0,
                                   (wanted & 2) != 0);
            break;
        case 6:
            result.hr = MirrorBits(out[0], dstBytes, &tp, wanted);
            break;
        default:
            result.hr = WeaveFields(c.pixels.data(), srcBytes, c.pixels.data(), srcBytes, &sp, out[0], dstBytes, &tp);
    }
    KernelLevelLimit(kKernelLevelHighest);
    return result;
}

void Walk(const uint8_t *data, size_t size) {
    Input in = {data, size};
    Case c;
    c.work = in.Next();
    c.quality = kQualities[in.Next() % std::size(kQualities)];
    c.source = RecordOf(in);
    c.target = RecordOf(in);
    c.pixels.resize(c.source.bytes);
    for (size_t i = 0; i < c.pixels.size(); ++i)
        c.pixels[i] = in.size > 0 ? in.data[i % in.size] : static_cast<uint8_t>(i * 37);
    const Bytes before = c.pixels;
    const Result ref = Run(c, KernelLevel::Reference);
    const Result vec = Run(c, KernelLevel::Avx2);
    fuzz::Require(ref.hr == vec.hr, "all levels have one status");
    fuzz::Require(c.pixels == before, "the source stays");
    for (int i = 0; i < 3; ++i) {
        fuzz::Require(ref.memory[i] == vec.memory[i], "all levels give the same bytes");
        const Bytes guard(kGuard, 0xA5);
        fuzz::Require(std::equal(guard.begin(), guard.end(), ref.memory[i].begin()), "nothing before the target changes");
        fuzz::Require(std::equal(guard.begin(), guard.end(), ref.memory[i].end() - kGuard),
                      "nothing behind the target changes");
    }
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk(data, size);
    return 0;
}
