#include "frames/media/media_names.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zck {
namespace {

std::string Short(int32_t format) { return Utf8FromText(VideoFormatShortText(static_cast<eZVideoFormat>(format))); }
std::string Long(int32_t format) { return Utf8FromText(VideoFormatLongText(static_cast<eZVideoFormat>(format))); }

TEST(VideoFormatText, EveryBaseHasItsTwoTexts) {
    const std::vector<std::pair<const char *, const char *>> texts = {
        {"Custom", "Custom"},
        {"NTSC", "eZVF_NTSC"},
        {"NTSC-23p", "eZVF_NTSC_2398p"},
        {"NTSC-16x9", "eZVF_NTSC_16x9"},
        {"PAL", "eZVF_PAL"},
        {"PAL-16x9", "eZVF_PAL_16x9"},
        {"HD720-50p", "eZVF_HD720_50p"},
        {"HD720-59p", "eZVF_HD720_5994p"},
        {"HD720-60p", "eZVF_HD720_60p"},
        {"HD1080-23p", "eZVF_HD1080_2398p"},
        {"HD1080-24p", "eZVF_HD1080_24p"},
        {"HD1080-25p", "eZVF_HD1080_25p"},
        {"HD1080-29p", "eZVF_HD1080_2997p"},
        {"HD1080-30p", "eZVF_HD1080_30p"},
        {"HD1080-50i", "eZVF_HD1080_50i"},
        {"HD1080-59i", "eZVF_HD1080_5994i"},
        {"HD1080-60i", "eZVF_HD1080_60i"},
        {"HD1080-50p", "eZVF_HD1080_50p"},
        {"HD1080-59p", "eZVF_HD1080_5994p"},
        {"HD1080-60p", "eZVF_HD1080_60p"},
        {"2K-23p", "eZVF_2K_2398p"},
        {"2K-24p", "eZVF_2K_24p"},
        {"2K-25p", "eZVF_2K_25p"},
        {"4K-UHD-50i", "eZVF_4K_UHD_50i"},
        {"4K-UHD-5994i", "eZVF_4K_UHD_5994i"},
        {"4K-UHD-60i", "eZVF_4K_UHD_60i"},
        {"4K-UHD-23p", "eZVF_4K_UHD_2398p"},
        {"4K-UHD-24p", "eZVF_4K_UHD_24p"},
        {"4K-UHD-25p", "eZVF_4K_UHD_25p"},
        {"4K-UHD-29p", "eZVF_4K_UHD_2997p"},
        {"4K-UHD-30p", "eZVF_4K_UHD_30p"},
        {"4K-DCI-23p", "eZVF_4K_DCI_2398p"},
        {"4K-DCI-24p", "eZVF_4K_DCI_24p"},
        {"4K-DCI-25p", "eZVF_4K_DCI_25p"},
    };
    ASSERT_EQ(texts.size(), 34U);
    for (int32_t base = 0; base < 34; ++base) {
        const auto &[brief, full] = texts[static_cast<size_t>(base)];
        EXPECT_EQ(Short(base), brief);
        EXPECT_EQ(Long(base), full);
    }
}

TEST(VideoFormatText, GoesByTheLowByte) {
    EXPECT_EQ(Short(eZVF_3D_Full_SbS_1080_50i), "HD1080-50i");
    EXPECT_EQ(Long(eZVF_3D_TnB_720_5994p), "eZVF_HD720_5994p");
    for (const int32_t unlisted : {34, 35, 255, -1, 1024 + 34}) {
        EXPECT_EQ(Short(unlisted), "") << unlisted;
        EXPECT_EQ(Long(unlisted), "") << unlisted;
    }
}

TEST(InterlaceText, KeywordsAndDisplayNames) {
    const char *keywords[] = {"auto", "top", "bottom", "progressive", "inverse", "field"};
    const char *shown[] = {"Auto", "TopFirst", "BottomFirst", "Progressive", "Inverse", "field"};
    for (int32_t i = 0; i < 6; ++i) {
        EXPECT_EQ(Utf8FromText(InterlaceKeyword(static_cast<eZInterlace>(i))), keywords[i]);
        EXPECT_EQ(Utf8FromText(InterlaceDisplayName(static_cast<eZInterlace>(i))), shown[i]);
    }
    for (const int32_t i : {-1, 6, 256, 512}) {
        EXPECT_TRUE(InterlaceKeyword(static_cast<eZInterlace>(i)).empty()) << i;
        EXPECT_TRUE(InterlaceDisplayName(static_cast<eZInterlace>(i)).empty()) << i;
    }
}

TEST(ScaleTypeText, EveryTypeHasItsWord) {
    const char *words[] = {"default", "none", "letter-box", "crop", "no-scale"};
    for (int32_t i = 0; i < 5; ++i) EXPECT_EQ(Utf8FromText(ScaleTypeName(static_cast<eZScaleType>(i))), words[i]);
    EXPECT_TRUE(ScaleTypeName(static_cast<eZScaleType>(5)).empty());
    EXPECT_TRUE(ScaleTypeName(static_cast<eZScaleType>(-1)).empty());
}

TEST(StereoText, LayoutsInTheOrderOfTheList) {
    const std::vector<std::pair<int32_t, std::string>> want = {{512, "3D-HSbS"}, {1024, "3D-HTnB"}, {4608, "3D-SbS"},
                                                               {5120, "3D-TnB"}, {1, "3D-Auto"},    {2048, "3D-Tile"},
                                                               {0, "none"}};
    ASSERT_EQ(want.size(), kStereoNames);
    for (size_t i = 0; i < want.size(); ++i) {
        const StereoName &row = StereoNameTable()[i];
        EXPECT_EQ(std::make_pair(static_cast<int32_t>(row.e3DFormat), Utf8FromText(row.name)), want[i]);
        EXPECT_EQ(Utf8FromText(StereoNameFind(row.e3DFormat)), want[i].second);
    }
    EXPECT_TRUE(StereoNameFind(eZ3D_FullFlag).empty());
}

}    // namespace
}    // namespace zck
