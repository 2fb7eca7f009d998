#include "platform/codec_facts.h"

#include <gtest/gtest.h>

#include "platform/library.h"
#include "tests/support/image_bytes.h"

namespace zck {
namespace {

void ExpectFacts(const std::string &file, CodecKind kind, int64_t width, int64_t height, int64_t pictures) {
    const auto facts = CodecFactsOf(file);
    ASSERT_TRUE(facts.has_value());
    EXPECT_EQ(facts->kind, kind);
    EXPECT_EQ(facts->width, width);
    EXPECT_EQ(facts->height, height);
    EXPECT_EQ(facts->pictures, pictures);
}

TEST(CodecFacts, OfEachKind) {
    ExpectFacts(test::PngBytes(3, 2, std::vector<uint8_t>(24)), CodecKind::Png, 3, 2, 1);
    test::BmpParts parts;
    parts.height = -2;
    ExpectFacts(test::BmpBytes(parts), CodecKind::Bmp, 2, 2, 1);
    const test::GifPart part = {0, 0, 2, 1, 5, 0, -1, false, {0, 0}};
    ExpectFacts(test::GifBytes(2, 1, {}, {part, part, part}), CodecKind::Gif, 2, 1, 3);
    ExpectFacts(test::TiffBytes({{5, 1, 0, std::vector<uint8_t>(15)}, {1, 1, 0, {1, 2, 3}}}), CodecKind::Tiff, 5, 1, 2);
    ExpectFacts(test::TiffBytes({{1, 1, 0, {1, 2, 3}}}, true), CodecKind::Tiff, 1, 1, kPicturesCounted);
    // A comment, and then the header of a frame of 7 by 9.
    const std::string jpeg("\xFF\xD8\xFF\xFE\x00\x04zz\xFF\xC2\x00\x0B\x08\x00\x09\x00\x07\x01", 18);
    ExpectFacts(jpeg, CodecKind::Jpeg, 7, 9, 1);
}

TEST(CodecFacts, OfWhatBreaksOff) {
    for (const std::string &file :
         {test::PngBytes(3, 2, std::vector<uint8_t>(24)), test::BmpBytes({}),
          test::GifBytes(2, 1, {}, {{0, 0, 2, 1, 5, 0, -1, false, {0, 0}}}), test::TiffBytes({{1, 1, 0, {1, 2, 3}}})}) {
        for (size_t size = 0; size < file.size(); ++size) {
            const auto facts = CodecFactsOf(std::string_view(file).substr(0, size));
            EXPECT_TRUE(!facts || facts->pictures <= 1);
        }
    }
    EXPECT_FALSE(CodecFactsOf(""));
    EXPECT_FALSE(CodecFactsOf("no picture"));
}

TEST(Library, WhatIsNotThereIsNull) {
    EXPECT_EQ(LibraryLoad("zck_no_such_library.so.1"), nullptr);
    void (*function)() = nullptr;
    EXPECT_FALSE(LibraryBind(nullptr, "malloc", function));
    EXPECT_EQ(function, nullptr);
}

}    // namespace
}    // namespace zck
