#include "imaging/geometry/weave_fields.h"

#include <gtest/gtest.h>

#include <cstring>

#include "imaging/colour/convert.h"
#include "platform/status.h"
#include "tests/imaging/geometry/picture.h"

namespace zck {
namespace {

using test::Bytes;
using test::Picture;

HRESULT Woven(const Picture &a, const Picture &b, Picture &c) {
    return WeaveFields(a.memory.data(), a.Size(), b.memory.data(), b.Size(), &a.props, c.memory.data(), c.Size(), &c.props);
}

TEST(WeaveFields, EvenRowsComeFromTheFirstAndOddRowsFromTheSecond) {
    for (const eZInterlace scan : {eZI_Progressive, eZI_Field1First, eZI_Field2First}) {
        const Picture a(eZFCC_UYVY, 8, 7, 1), b(eZFCC_UYVY, 8, 7, 2);
        Picture c(eZFCC_UYVY, 8, 7, 3);
        c.props.eInterlace = scan;
        const Picture before = c;
        ASSERT_EQ(Woven(a, b, c), S_OK);
        const bool exchanged = scan == eZI_Field2First;
        for (int32_t y = 0; y < 6; ++y)
            EXPECT_EQ(std::memcmp(c.Row(y), ((y % 2 == 0) != exchanged ? a : b).Row(y), 16), 0) << y;
        EXPECT_EQ(std::memcmp(c.Row(6), before.Row(6), 16), 0) << "a last odd row is not written";
    }
}

TEST(WeaveFields, ABottomUpTargetExchangesThem) {
    const Picture a(eZFCC_RGB32, 4, -6, 1), b(eZFCC_RGB32, 4, -6, 2);
    Picture c(eZFCC_RGB32, 4, 6, 3);
    ASSERT_EQ(Woven(a, b, c), S_OK);
    for (int32_t y = 0; y < 6; ++y)
        EXPECT_EQ(std::memcmp(c.Row(5 - y), (y % 2 == 0 ? b : a).Row(y), 16), 0) << "row " << y << " of the picture";
    Picture d(eZFCC_RGB32, 4, 6, 3);
    d.props.eInterlace = eZI_Field2First;
    ASSERT_EQ(Woven(a, b, d), S_OK);
    EXPECT_EQ(std::memcmp(d.Row(5), a.Row(0), 16), 0);
}

// One row of the first, then those of the second.
TEST(WeaveFields, ConversionsThatWriteAnAlphaDoNotWeave) {
    for (const eZFCC from : {eZFCC_UYVY, eZFCC_YUY2}) {
        const Picture a(from, 4, 8, 1), b(from, 4, 8, 2);
        Picture c(eZFCC_ARGB32, 4, -8, 3), ca(eZFCC_ARGB32, 4, -8, 4), cb(eZFCC_ARGB32, 4, -8, 4);
        const Picture before = c;
        ASSERT_EQ(Woven(a, b, c), S_OK);
        ASSERT_EQ(ConvertSameGeometry(a.memory.data(), ca.memory.data(), &a.props, &ca.props), S_OK);
        ASSERT_EQ(ConvertSameGeometry(b.memory.data(), cb.memory.data(), &b.props, &cb.props), S_OK);
        for (int32_t y = 0; y < 8; ++y)
            EXPECT_EQ(std::memcmp(c.Row(y), (y == 0 ? ca : y < 5 ? cb : before).Row(y), 16), 0) << y;
        Picture low(eZFCC_ARGB32, 4, -1, 3), was = low;
        const Picture line(from, 4, 1, 1);
        ASSERT_EQ(Woven(line, line, low), S_OK);
        EXPECT_EQ(low.memory, was.memory);
    }
}

TEST(WeaveFields, Statuses) {
    const Picture a(eZFCC_UYVY, 8, 4, 1), yvyu(eZFCC_YVYU, 8, 4, 1), rgb(eZFCC_RGB32, 8, 4, 1);
    Picture c(eZFCC_UYVY, 8, 4, 3);
    EXPECT_EQ(WeaveFields(nullptr, 64, a.memory.data(), 64, &a.props, c.memory.data(), 64, &c.props), E_POINTER);
    EXPECT_EQ(WeaveFields(a.memory.data(), 64, nullptr, 64, &a.props, c.memory.data(), 64, &c.props), E_POINTER);
    EXPECT_EQ(WeaveFields(a.memory.data(), 64, a.memory.data(), 64, nullptr, c.memory.data(), 64, &c.props), E_POINTER);
    EXPECT_EQ(WeaveFields(a.memory.data(), 64, a.memory.data(), 64, &a.props, nullptr, 64, &c.props), E_POINTER);
    EXPECT_EQ(WeaveFields(a.memory.data(), 64, a.memory.data(), 64, &a.props, c.memory.data(), 64, nullptr), E_POINTER);
    EXPECT_EQ(WeaveFields(a.memory.data(), 64, a.memory.data(), 63, &a.props, c.memory.data(), 64, &c.props),
              kVfwEInvalidMediaType);
    EXPECT_EQ(WeaveFields(a.memory.data(), 64, a.memory.data(), 64, &a.props, c.memory.data(), 63, &c.props),
              kVfwEInvalidMediaType);
    EXPECT_EQ(Woven(yvyu, yvyu, c), kVfwEInvalidSubtype);
    Picture v210(eZFCC_v210, 8, 4, 1);
    EXPECT_EQ(Woven(rgb, rgb, v210), E_FAIL);
    c.props.nWidth = 0;
    EXPECT_EQ(Woven(a, a, c), E_UNEXPECTED);
}

}    // namespace
}    // namespace zck
