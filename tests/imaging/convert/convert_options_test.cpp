#include "imaging/convert/convert_options.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

ConvertOptions Read(const char *text) { return ConvertOptionsFromText(TextFromUtf8(text)); }

TEST(ConvertOptions, AnEmptyListIsAllDefaults) {
    for (const char *text : {"", "   ", "no_such_thing=1", "scale_type", "scale_type= mirror="}) {
        const ConvertOptions o = Read(text);
        EXPECT_FALSE(o.scaleType) << text;
        EXPECT_FALSE(o.fitAspect);
        EXPECT_EQ(o.quality, 4);
        EXPECT_EQ(o.field, -1);
        EXPECT_EQ(o.mirror, 0);
        EXPECT_EQ(o.turn, Turn::kNone);
        EXPECT_FALSE(o.crop.Any());
    }
}

TEST(ConvertOptions, KeywordsGoWithoutRegardToCase) {
    EXPECT_EQ(Read("scale_type=default").scaleType, eZST_Default);
    EXPECT_EQ(Read("scale_type='None'").scaleType, eZST_None);
    EXPECT_EQ(Read("SCALE_TYPE=Letter-Box").scaleType, eZST_LetterBox);
    EXPECT_EQ(Read("scale_type=crop").scaleType, eZST_Crop);
    EXPECT_EQ(Read("scale_type=NO-SCALE").scaleType, eZST_NoScale);
    EXPECT_TRUE(Read("scale_type=FIT_AR").fitAspect);
    EXPECT_FALSE(Read("scale_type=fit_ar").scaleType);
    EXPECT_EQ(Read("mirror=Horz").mirror, kMirrorHorz);
    EXPECT_EQ(Read("mirror=vert").mirror, kMirrorVert);
    EXPECT_EQ(Read("mirror=BOTH").mirror, kMirrorHorzVert);
    EXPECT_EQ(Read("rotate=Right").turn, Turn::kRight);
    EXPECT_EQ(Read("rotate=left").turn, Turn::kLeft);
}

TEST(ConvertOptions, WhatIsUnknownCountsAsMissing) {
    EXPECT_FALSE(Read("scale_type=letterbox").scaleType);
    EXPECT_EQ(Read("mirror=180").mirror, 0);
    EXPECT_EQ(Read("rotate=1").turn, Turn::kNone);
    EXPECT_EQ(Read("scaling_quality=best").quality, 4);
    EXPECT_EQ(Read("field=top").field, -1);
}

TEST(ConvertOptions, NumbersAndInsets) {
    const ConvertOptions o = Read("scaling_quality=0 field=1 crop='1, 2;3 -4'");
    EXPECT_EQ(o.quality, 0);
    EXPECT_EQ(o.field, 1);
    EXPECT_EQ(o.crop.left, 1);
    EXPECT_EQ(o.crop.top, 2);
    EXPECT_EQ(o.crop.right, 3);
    EXPECT_EQ(o.crop.bottom, -4);
    EXPECT_EQ(Read("crop=8").crop.bottom, 8);
    EXPECT_EQ(Read("crop='8 6'").crop.bottom, 6);
    EXPECT_FALSE(Read("crop=''").crop.Any());
}

}    // namespace
}    // namespace zck
