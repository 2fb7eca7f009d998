// The scaling quality and its automatic choice.
#include "imaging/convert/quality.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using namespace zck;

Z_VID_PROPS Lines(int32_t height, eZInterlace scan, double rate = 25.0) {
    Z_VID_PROPS props = {};
    props.nWidth = 720;
    props.nHeight = height;
    props.eInterlace = scan;
    props.dblRate = rate;
    return props;
}

TEST(Quality, CodesAndEngine) {
    const struct {
        int32_t value;
        int32_t code;
        bool high;
    } cases[] = {{INT_MIN, 1, false}, {0, 1, false}, {1, 1, false},  {2, 2, false},  {3, 2, false},      {4, 4, false},
                 {5, 5, false},       {8, 8, false}, {9, 16, false}, {10, 1, true},  {12, 2, true},      {13, 2, true},
                 {14, 4, true},       {18, 8, true}, {19, 16, true}, {26, 16, true}, {INT_MAX, 16, true}};
    for (const auto &c : cases) {
        EXPECT_EQ(QualityDecode(c.value).nCode, c.code) << c.value;
        EXPECT_EQ(QualityDecode(c.value).bHighQuality, c.high) << c.value;
    }
}

TEST(Quality, AValueIsTaken) {
    EXPECT_EQ(QualityAuto(1, Lines(576, eZI_Field1First), Lines(100, eZI_Field1First)), 1);
    EXPECT_EQ(QualityAuto(99, Lines(576, eZI_Field1First), Lines(100, eZI_Field1First)), 99);
}

TEST(Quality, FieldsThatLoseLinesAreFilteredInTime) {
    const Z_VID_PROPS source = Lines(-1080, eZI_Field1First);
    EXPECT_EQ(QualityAuto(0, source, Lines(599, eZI_Field2First)), 18);
    EXPECT_EQ(QualityAuto(0, source, Lines(600, eZI_Field2First)), 16);
    EXPECT_EQ(QualityAuto(-5, source, Lines(1079, eZI_Field2First)), 16);
    EXPECT_EQ(QualityAuto(0, source, Lines(1080, eZI_Field2First)), 8);
}

TEST(Quality, ProgressivePicturesAreSuperSampled) {
    EXPECT_EQ(QualityAuto(0, Lines(1080, eZI_Progressive), Lines(720, eZI_Progressive, 100)), 8);
    EXPECT_EQ(QualityAuto(0, Lines(1080, eZI_Progressive), Lines(720, eZI_Field1First)), 8);
}

TEST(Quality, FieldsForAFasterProgressiveTarget) {
    const Z_VID_PROPS source = Lines(1080, eZI_Field1First);
    EXPECT_EQ(QualityAuto(0, source, Lines(720, eZI_Progressive, 42.5)), 16);
    EXPECT_EQ(QualityAuto(0, source, Lines(720, eZI_Progressive, 42.4)), 8);
    EXPECT_EQ(QualityAuto(0, Lines(1080, eZI_Field1First, 0), Lines(720, eZI_Progressive, 0)), 16);
}

}    // namespace
