#include "imaging/convert/copy_frame.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/colour/convert.h"
#include "platform/status.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

Z_VID_PROPS Record(eZFCC fcc, int32_t width, int32_t height) {
    Z_VID_PROPS props = {};
    props.fccType = fcc;
    props.nWidth = width;
    props.nHeight = IsRgbFormat(fcc) ? -height : height;
    props.nRowBytes = RowBytes(fcc, width);
    props.eInterlace = eZI_Progressive;
    return props;
}

Bytes Noise(const Z_VID_PROPS &props, uint32_t seed) {
    std::mt19937 random(seed);
    Bytes bytes(static_cast<size_t>(FrameBufferSize(&props)));
    for (uint8_t &b : bytes) b = static_cast<uint8_t>(random() >> 8);
    return bytes;
}

int64_t Size(const Bytes &bytes) { return static_cast<int64_t>(bytes.size()); }

// Heights that four and two jobs share evenly, and one that they do not.
TEST(CopyFrame, GivesTheBytesOfOneThread) {
    for (const eZFCC from : {eZFCC_v210, eZFCC_UYVY, eZFCC_HDYC, eZFCC_ARGB32})
        for (const eZFCC to : {eZFCC_v210, eZFCC_UYVY, eZFCC_RGB24, eZFCC_RGB32})
            for (const int32_t height : {480, 479, 3})
                for (const eZInterlace order : {eZI_Progressive, eZI_Field2First}) {
                    SCOPED_TRACE(testing::Message() << std::hex << from << " to " << to << std::dec << ", " << height);
                    Z_VID_PROPS sp = Record(from, 642, height);
                    const Z_VID_PROPS tp = Record(to, 642, height);
                    sp.eInterlace = order;
                    const Bytes src = Noise(sp, 1);
                    Bytes expected = Noise(tp, 2);
                    Bytes found = expected;
                    const HRESULT hr = ConvertSameGeometry(src.data(), Size(src), expected.data(), Size(expected), &sp, &tp);
                    ASSERT_EQ(CopyFrameCC_Thread(src.data(), Size(src), found.data(), Size(found), &sp, &tp), hr);
                    ASSERT_EQ(expected, found);
                }
}

TEST(CopyFrame, Statuses) {
    const Z_VID_PROPS v210 = Record(eZFCC_v210, 48, 4), rgb = Record(eZFCC_RGB32, 48, 4), i420 = Record(eZFCC_I420, 48, 4);
    const Bytes src = Noise(v210, 3);
    Bytes dst(4096);
    EXPECT_EQ(CopyFrameCC_Thread(nullptr, 512, dst.data(), 4096, &v210, &rgb), E_POINTER);
    EXPECT_EQ(CopyFrameCC_Thread(src.data(), 512, nullptr, 4096, &v210, &rgb), E_POINTER);
    EXPECT_EQ(CopyFrameCC_Thread(src.data(), 512, dst.data(), 4096, nullptr, &rgb), E_POINTER);
    EXPECT_EQ(CopyFrameCC_Thread(src.data(), 512, dst.data(), 4096, &v210, &i420), kVfwEInvalidSubtype);
    EXPECT_EQ(CopyFrameCC_Thread(dst.data(), 4096, dst.data(), 4096, &rgb, &v210), E_FAIL);
    EXPECT_EQ(CopyFrameCC_Thread(src.data(), 100, dst.data(), 4096, &v210, &rgb), kVfwEInvalidMediaType);
}

}    // namespace
}    // namespace zck
