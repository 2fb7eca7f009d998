// A key record of any bytes over a small picture: keyed plane by plane with the reference kernels and row by row with the
// best ones, which must agree. Format, width, height and the rest of a picture's description are the first four bytes; then
// comes the record, and then the pixels, both filled up with zeros.
#include <cstring>
#include <vector>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "fuzz/support/foreign_text.h"
#include "keying/key/key.h"
#include "keying/pipeline/streaming_path.h"
#include "keying/slices/slices.h"
#include "platform/processor.h"
#include "platform/status.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr eZFCC kFormats[] = {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2};
constexpr size_t kHeader = 4;

struct Case {
    Z_VID_PROPS props = {};
    int32_t threads = 1;
    CHROMA_KEY_RAW key = {};
    Bytes pixels;
    Bytes alpha;
};

Case CaseOf(const uint8_t *data, size_t size) {
    uint8_t header[kHeader] = {};
    if (size != 0) std::memcpy(header, data, std::min(size, kHeader));
    Case made;
    made.props.fccType = kFormats[header[0] % std::size(kFormats)];
    made.props.nWidth = 1 + header[1] % 80;
    made.props.nHeight = 1 + header[2] % 20;
    if (IsRgbFormat(made.props.fccType) && (header[3] & 1) != 0) made.props.nHeight = -made.props.nHeight;
    made.props.eInterlace = (header[3] & 2) != 0 ? eZI_Field1First : eZI_Progressive;
    made.threads = 1 + (header[3] >> 2) % 3;
    made.props.nRowBytes = RowBytes(made.props.fccType, made.props.nWidth + (header[3] >> 6));
    const auto height = static_cast<size_t>(std::abs(made.props.nHeight));
    made.pixels.resize(static_cast<size_t>(made.props.nRowBytes) * height);
    made.alpha.resize(static_cast<size_t>(AlphaStride(made.props)) * height);
    if (size <= kHeader) return made;
    data += kHeader;
    size -= kHeader;
    std::memcpy(&made.key, data, std::min(size, sizeof(made.key)));
    if (size <= sizeof(made.key)) return made;
    std::memcpy(made.pixels.data(), data + sizeof(made.key), std::min(size - sizeof(made.key), made.pixels.size()));
    return made;
}

HRESULT Key(Case &picture, KernelLevel level, bool byRows) {
    static CSliceThreads s_pool;
    s_pool.SetThreadCount(picture.threads);
    KernelLevelLimit(level);
    StreamingPath::Allow(byRows);
    return s_pool.Dispatch(picture.pixels.data(), picture.alpha.data(), &picture.props, &picture.key, WriteAlpha::Yes,
                           ReturnEarly::No, nullptr, static_cast<int64_t>(picture.pixels.size()));
}

void Walk(const Case &given) {
    for (int32_t i = -1; i <= kKeysMax; ++i) AdjustFromRaw(given.key, i);
    Case planes = given;
    Case rows = given;
    const HRESULT hr = Key(planes, KernelLevel::Reference, false);
    const HRESULT rowsHr = Key(rows, KernelLevel::Avx2, true);
    // A machine that is too busy says nothing about the bytes.
    if (hr == kErrorTimeout || rowsHr == kErrorTimeout) return;
    fuzz::Require(rowsHr == hr, "both paths have one status");
    if (FAILED(hr)) return;
    fuzz::Require(planes.pixels == rows.pixels, "both paths give the same pixels");
    fuzz::Require(planes.alpha == rows.alpha, "both paths give the same alpha");
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk(zck::CaseOf(data, size));
    return 0;
}
