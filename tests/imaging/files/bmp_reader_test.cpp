#include "imaging/files/bmp_reader.h"

#include <gtest/gtest.h>

#include "platform/status.h"
#include "tests/support/image_bytes.h"
#include "tests/support/scratch_folder.h"

namespace zck {
namespace {

using test::BmpBytes;
using test::BmpParts;

class BmpReader : public testing::Test {
protected:
    struct Result {
        HRESULT status;
        BITMAPINFOHEADER header;
        std::string pixels;
    };

    Result Read(const std::string &file) {
        m_folder.Put("a.bmp", file);
        Result result = {};
        uint8_t *pixels = nullptr;
        result.status = ReadBmp(Name(), &result.header, &pixels);
        EXPECT_EQ(pixels != nullptr, result.status == S_OK);
        if (pixels != nullptr) result.pixels.assign(reinterpret_cast<char *>(pixels), result.header.biSizeImage);
        CoTaskMemFree(pixels);
        return result;
    }
    HRESULT Status(const BmpParts &parts) { return Read(BmpBytes(parts)).status; }
    Text Name() const { return TextFromUtf8(m_folder.Path("a.bmp")); }

    test::ScratchFolder m_folder;
};

TEST_F(BmpReader, ReadsHeaderAndRowsAsTheyStand) {
    const Result result = Read(BmpBytes({}));
    EXPECT_EQ(result.status, S_OK);
    EXPECT_EQ(result.header.biWidth, 2);
    EXPECT_EQ(result.header.biHeight, 2);
    EXPECT_EQ(result.header.biBitCount, 32);
    EXPECT_EQ(result.header.biSizeImage, 16u);
    EXPECT_EQ(result.pixels, "abcdefghijklmnop");
}

TEST_F(BmpReader, SignOfTheHeightStays) {
    BmpParts parts;
    parts.height = -2;
    const Result result = Read(BmpBytes(parts));
    EXPECT_EQ(result.status, S_OK);
    EXPECT_EQ(result.header.biHeight, -2);
}

TEST_F(BmpReader, PixelsStartWhereTheFileSays) {
    BmpParts parts;
    parts.offset = 70;
    EXPECT_EQ(Read(BmpBytes(parts)).pixels, "abcdefghijklmnop");
    parts.offset = 53;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts.offset = 54;
    parts.stated = 54;
    EXPECT_EQ(Status(parts), E_FAIL);
}

TEST_F(BmpReader, SizeThatIsLeftOutIsWorkedOut) {
    BmpParts parts;
    parts.imageBytes = 0;
    const Result result = Read(BmpBytes(parts));
    EXPECT_EQ(result.status, S_OK);
    EXPECT_EQ(result.header.biSizeImage, 16u);
    // More than the rows is read whole, less is none.
    parts.imageBytes = 17;
    parts.pixels += "q";
    EXPECT_EQ(Read(BmpBytes(parts)).pixels, "abcdefghijklmnopq");
    parts.imageBytes = 15;
    EXPECT_EQ(Status(parts), E_FAIL);
}

TEST_F(BmpReader, OtherDepths) {
    BmpParts parts;
    parts.bits = 24;
    EXPECT_EQ(Status(parts), S_OK);
    parts.bits = 16;
    EXPECT_EQ(Status(parts), S_OK);
    for (const uint16_t bits : std::initializer_list<uint16_t>{0, 1, 4, 8, 31, 64}) {
        parts.bits = bits;
        EXPECT_EQ(Status(parts), E_FAIL) << bits;
    }
    // Masks are not looked at.
    parts.bits = 32;
    parts.compression = 3;
    EXPECT_EQ(Status(parts), S_OK);
    parts.compression = 1;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts.compression = 0x32595559;    // YUY2
    EXPECT_EQ(Status(parts), S_OK);
}

TEST_F(BmpReader, WhatIsNoValidFileFails) {
    BmpParts parts;
    parts.headerBytes = 108;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts = {};
    parts.planes = 2;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts = {};
    parts.coloursUsed = 1;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts = {};
    parts.width = 0;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts.width = 0xFFFFFFFF;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts = {};
    parts.height = 0;
    EXPECT_EQ(Status(parts), E_FAIL);
    std::string file = BmpBytes({});
    file[1] = 'N';
    EXPECT_EQ(Read(file).status, E_FAIL);
    EXPECT_EQ(Read("").status, E_FAIL);
    EXPECT_EQ(Read(BmpBytes({}).substr(0, 53)).status, E_FAIL);
}

TEST_F(BmpReader, NothingIsAllocatedThatTheFileDoesNotHold) {
    EXPECT_EQ(Read(BmpBytes({}).substr(0, 69)).status, E_FAIL);
    BmpParts parts;
    parts.stated = 69;
    EXPECT_EQ(Status(parts), E_FAIL);
    // Sums that would wrap in 32 bits.
    parts = {};
    parts.width = 0x10000;
    parts.height = 0x10000;
    parts.imageBytes = 16;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts.width = 0x4000;
    parts.height = 0x7FFF;
    parts.imageBytes = 0x7FFF0000;
    parts.stated = 0x7FFF0046;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts = {};
    parts.height = INT32_MIN;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts = {};
    parts.imageBytes = 0xFFFFFFF0;
    EXPECT_EQ(Status(parts), E_FAIL);
    parts = {};
    parts.offset = 0xFFFFFFF0;
    parts.stated = 0xFFFFFFFF;
    EXPECT_EQ(Status(parts), E_FAIL);
}

TEST_F(BmpReader, ArgumentsAndMissingFiles) {
    m_folder.Put("a.bmp", BmpBytes({}));
    BITMAPINFOHEADER header;
    uint8_t *pixels = nullptr;
    EXPECT_EQ(ReadBmp(TextView(), &header, &pixels), E_INVALIDARG);
    EXPECT_EQ(ReadBmp(Name(), nullptr, &pixels), E_INVALIDARG);
    EXPECT_EQ(ReadBmp(Name(), &header, nullptr), E_POINTER);
    EXPECT_EQ(ReadBmp(TextFromUtf8(m_folder.Path("missing.bmp")), &header, &pixels), kErrorFileNotFound);
    EXPECT_EQ(ReadBmp(TextFromUtf8(m_folder.Path()), &header, &pixels), kErrorAccessDenied);
}

}    // namespace
}    // namespace zck
