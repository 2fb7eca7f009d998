#include "frames/media/picture.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <set>
#include <tuple>
#include <vector>

namespace zck {
namespace {

using Places = std::vector<std::tuple<int32_t, int64_t, int64_t>>;    // plane, row, offset

Places PlacesOf(const PictureGeometry &g) {
    Places places;
    for (int32_t i = 0; i < g.Planes(); ++i) {
        for (int64_t y = 0; y < g.plane[i].rows; ++y) places.emplace_back(i, y, g.plane[i].RowOffset(y));
    }
    return places;
}

PictureGeometry Make(eZFCC fcc, int32_t width, int32_t height, int64_t rowBytes) {
    PictureGeometry g;
    EXPECT_TRUE(PictureGeometryMake(fcc, width, height, rowBytes, &g));
    return g;
}

bool HasGeometry(const FormatRow &row) { return row.nPixelBits != 0 && (!row.bPlanar || row.pixels != PixelClass::None); }

// Calls `check` for pictures of every format that has a geometry.
template <class Check>
void ForPictures(Check &&check) {
    for (const FormatRow &row : kFormatTable) {
        if (!HasGeometry(row)) continue;
        for (const int32_t width : {1, 2, 5, 12}) {
            for (const int32_t height : {1, -1, 2, 5, -5, 6}) {
                SCOPED_TRACE(testing::Message() << std::hex << row.fcc << std::dec << ' ' << width << 'x' << height);
                const int64_t rowBytes = row.PixelRowBytes(width) + 6;
                check(Make(row.fcc, width, height, rowBytes), height, rowBytes);
            }
        }
    }
}

TEST(PictureGeometry, RowsCountFromTheTopInEveryFormat) {
    ForPictures([](const PictureGeometry &g, int32_t height, int64_t rowBytes) {
        EXPECT_EQ(g.rows, std::abs(height));
        const bool bottomUp = g.format->bRgb && height > 0;
        EXPECT_EQ(g.BottomUp(), bottomUp);
        EXPECT_EQ(g.SignedHeight(), g.format->bRgb ? height : std::abs(height));
        for (int32_t y = 0; y < g.rows; ++y) EXPECT_EQ(g.RowOffset(y), (bottomUp ? g.rows - 1 - y : y) * rowBytes);
    });
}

TEST(PictureGeometry, ExtentIsTheEndOfTheLastByteTouched) {
    ForPictures([](const PictureGeometry &g, int32_t, int64_t) {
        const int64_t used = g.format->PixelRowBytes(g.width);
        int64_t end = 0;
        for (const auto &[i, y, offset] : PlacesOf(g)) {
            const bool pairs = g.format->pixels == PixelClass::Nv12;
            const int64_t bytes = i == 0 ? used : g.plane[i].width * (pairs ? 2 : 1);
            if (bytes > 0) end = std::max(end, offset + bytes);
        }
        EXPECT_EQ(g.Extent(used), end);
    });
}

TEST(PictureGeometry, PlanesFollowOneAnother) {
    const PictureGeometry i420 = Make(eZFCC_I420, 6, 4, 8);
    EXPECT_EQ(i420.plane[1].offset, 32);
    EXPECT_EQ(i420.plane[2].offset, 40);
    EXPECT_EQ(i420.plane[1].stride, 4);
    EXPECT_EQ(i420.plane[1].width, 3);
    EXPECT_EQ(i420.plane[1].rows, 2);
    EXPECT_EQ(i420.Extent(6), 32 + 8 + 4 + 3);
    const PictureGeometry yv12 = Make(eZFCC_YV12, 6, 4, 8);
    EXPECT_EQ(yv12.plane[1].offset, 40);
    EXPECT_EQ(yv12.plane[2].offset, 32);
    const PictureGeometry nv12 = Make(eZFCC_NV12, 6, 4, 8);
    EXPECT_EQ(nv12.plane[1].offset, 32);
    EXPECT_EQ(nv12.plane[2].offset, 32);
    EXPECT_EQ(nv12.plane[1].stride, 8);
    EXPECT_EQ(nv12.Extent(6), 32 + 8 + 6);
}

TEST(PictureGeometry, ChromaOfOddPicturesIsCutDown) {
    const PictureGeometry g = Make(eZFCC_I420, 5, 3, 5);
    EXPECT_EQ(g.plane[1].width, 2);
    EXPECT_EQ(g.plane[1].rows, 1);
    EXPECT_EQ(g.plane[1].stride, 2);
    EXPECT_EQ(g.plane[2].offset, 17);
    EXPECT_EQ(Make(eZFCC_I420, 1, 1, 1).Extent(1), 1);
}

TEST(PictureGeometry, CombsShareTheRowsWithoutARest) {
    ForPictures([](const PictureGeometry &g, int32_t, int64_t) {
        for (const int32_t n : {1, 2, 3}) {
            Places places;
            for (int32_t i = 0; i < n; ++i) {
                const PictureGeometry comb = g.Comb(i, n);
                EXPECT_EQ(comb.rows, g.rows / n);
                for (const auto &[plane, y, offset] : PlacesOf(comb)) places.emplace_back(plane, n * y + i, offset);
            }
            const Places all = PlacesOf(g);
            for (const auto &place : places) EXPECT_EQ(std::count(all.begin(), all.end(), place), 1);
            EXPECT_EQ(std::set(places.begin(), places.end()).size(), places.size());
        }
        EXPECT_EQ(PlacesOf(g.Field(1)), PlacesOf(g.Comb(1, 2)));
    });
}

TEST(PictureGeometry, TurnedTwiceIsTheSame) {
    ForPictures([](const PictureGeometry &g, int32_t, int64_t) {
        const PictureGeometry turned = g.Turned();
        EXPECT_EQ(turned.BottomUp(), !g.BottomUp());
        for (int32_t i = 0; i < g.Planes(); ++i) {
            const int32_t rows = g.plane[i].rows;
            for (int32_t y = 0; y < rows; ++y) EXPECT_EQ(turned.plane[i].RowOffset(y), g.plane[i].RowOffset(rows - 1 - y));
        }
        EXPECT_EQ(PlacesOf(turned.Turned()), PlacesOf(g));
        EXPECT_FALSE(g.InMemoryOrder().BottomUp());
        EXPECT_EQ(g.InMemoryOrder().RowOffset(0), 0);
        EXPECT_EQ(turned.Extent(1), g.Extent(1));
    });
}

TEST(PictureGeometry, PartsStartWhereTheirPixelsStand) {
    ForPictures([](const PictureGeometry &g, int32_t, int64_t) {
        EXPECT_EQ(PlacesOf(g.Part(0, 0, g.width, g.rows)), PlacesOf(g));
        if (g.width < 12 || g.rows < 5 || g.format->group.bytes == 0) return;
        const PictureGeometry part = g.Part(6, 2, 4, 3);
        EXPECT_EQ(part.width, 4);
        EXPECT_EQ(part.rows, 3);
        const int64_t left = 6 / g.format->group.pixels * g.format->group.bytes;
        for (int32_t y = 0; y < 3; ++y) EXPECT_EQ(part.RowOffset(y), g.RowOffset(2 + y) + left);
        for (int32_t i = 1; i < g.Planes(); ++i) {
            EXPECT_EQ(part.plane[i].offset, g.plane[i].RowOffset(1) + (g.format->pixels == PixelClass::Nv12 ? 6 : 3));
            EXPECT_EQ(part.plane[i].width, 2);
            EXPECT_EQ(part.plane[i].rows, g.rows == 5 ? 1 : 2);
        }
    });
}

TEST(PictureGeometry, RefusesWhatIsNoPicture) {
    PictureGeometry g;
    for (const FormatRow &row : kFormatTable) {
        SCOPED_TRACE(row.fcc);
        EXPECT_EQ(PictureGeometryMake(row.fcc, 4, 4, 64, &g), HasGeometry(row));
        EXPECT_EQ(g.format, HasGeometry(row) ? &row : nullptr);
        if (!HasGeometry(row)) continue;
        EXPECT_FALSE(PictureGeometryMake(row.fcc, 0, 4, 64, &g));
        EXPECT_FALSE(PictureGeometryMake(row.fcc, -4, 4, 64, &g));
        EXPECT_FALSE(PictureGeometryMake(row.fcc, 4, 0, 64, &g));
        EXPECT_FALSE(PictureGeometryMake(row.fcc, 4, INT32_MIN, 64, &g));
        EXPECT_FALSE(PictureGeometryMake(row.fcc, 4, 4, -64, &g));
        EXPECT_FALSE(PictureGeometryMake(row.fcc, 4, 4, int64_t{INT32_MAX} + 1, &g));
        EXPECT_TRUE(PictureGeometryMake(row.fcc, 4, 4, row.PixelRowBytes(4), &g));
        EXPECT_FALSE(PictureGeometryMake(row.fcc, 4, 4, row.PixelRowBytes(4) - 1, &g));
        EXPECT_EQ(g.format, nullptr);
    }
    EXPECT_FALSE(PictureGeometryMake(eZFCC_Default, 4, 4, 64, &g));
    EXPECT_FALSE(PictureGeometryMake(static_cast<eZFCC>(0x20202020), 4, 4, 64, &g));
}

TEST(PictureGeometry, HugePicturesDoNotOverflow) {
    const PictureGeometry g = Make(eZFCC_I420, INT32_MAX, INT32_MAX, INT32_MAX);
    EXPECT_EQ(g.plane[1].offset, int64_t{INT32_MAX} * INT32_MAX);
    EXPECT_GT(g.Extent(INT32_MAX), g.plane[2].offset);
}

TEST(Picture, RowsAreAddressesInItsMemory) {
    std::array<uint8_t, 64> memory = {};
    Z_VID_PROPS props = {};
    props.fccType = eZFCC_RGB24;
    props.nWidth = 4;
    props.nHeight = 3;
    props.nRowBytes = 16;
    Picture picture;
    ASSERT_TRUE(PictureMake(props, memory.data(), 44, &picture));
    EXPECT_EQ(picture.Row(0), memory.data() + 32);
    EXPECT_EQ(picture.Row(2), memory.data());
    EXPECT_EQ(picture.BytesFrom(0), 12);
    EXPECT_EQ(picture.End(), memory.data() + 44);
    EXPECT_TRUE(picture.Holds(12));
    EXPECT_FALSE(picture.Holds(13));
    const ConstPicture turned = ConstPicture(picture).Turned();
    EXPECT_EQ(turned.Row(0), memory.data());
    EXPECT_EQ(turned.bytes, 44);
    EXPECT_EQ(picture.Part(1, 1, 2, 2).Row(0), memory.data() + 16 + 3);
    EXPECT_EQ(picture.Field(1).Row(0), memory.data() + 16);
    EXPECT_FALSE(PictureMake(props, memory.data(), 43, &picture));
    EXPECT_EQ(picture.memory, nullptr);
}

}    // namespace
}    // namespace zck
