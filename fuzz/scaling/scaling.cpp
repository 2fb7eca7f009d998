// Two records of any contents over two small memories: scaled by both engines, turned, mirrored and woven, with the reference
// kernels and with the best ones, which must agree. Nothing behind or before a target may change. The first byte says
// what is done, the next ones are the records (see `RecordOf`); the rest is the source's pixels.
#include <algorithm>
#include <cstring>
#include <vector>

#include "fuzz/support/foreign_text.h"
#include "fuzz/support/picture_input.h"
#include "imaging/engines/convert_frame.h"
#include "imaging/geometry/mirror_bits.h"
#include "imaging/geometry/rotate_bits.h"
#include "imaging/geometry/weave_fields.h"
#include "platform/processor.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;
using fuzz::Input;
using fuzz::Record;

constexpr int32_t kQualities[] = {1, 2, 4, 5, 6, 7, 8, 16, 0, 3, -1, 17};
constexpr size_t kGuard = 64;

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
    c.pixels = fuzz::PixelsOf(in, c.source.bytes);
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
