#include "props/values/identifiers.h"

#include <gtest/gtest.h>

#include "tests/props/values/say.h"

namespace zck {
namespace {

constexpr GUID kId = {0x6B0F1D32, 0x8E54, 0x4C1B, {0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x03}};

TEST(Identifier, WritesBracesAndUpperCase) {
    EXPECT_EQ(Say(IdentifierToText(kId)), "{6B0F1D32-8E54-4C1B-9A3E-5107D2A48803}");
    EXPECT_EQ(Say(IdentifierToText(GUID{})), "{00000000-0000-0000-0000-000000000000}");
}

TEST(Identifier, ReadsPairsAndSkipsTheRest) {
    EXPECT_TRUE(IdentifierFromText(In("{6b0f1d32-8E54-4C1B-9A3E-5107D2A48803}")) == kId);
    EXPECT_TRUE(IdentifierFromText(In("6B0F1D328E544C1B9A3E5107D2A48803")) == kId);
    EXPECT_TRUE(IdentifierFromText(In("6B 0F 1D 32 8E 54 4C 1B 9A 3E 51 07 D2 A4 88 03")) == kId);
}

TEST(Identifier, SkipsALoneDigit) {
    EXPECT_TRUE(IdentifierFromText(In("7-6B0F1D32-8E54-4C1B-9A3E-5107D2A48803-5")) == kId);
    // The lone digit does not pair with the next one behind the stroke: 15 pairs.
    EXPECT_TRUE(IdentifierFromText(In("6B0F1D3-28E54-4C1B-9A3E-5107D2A48803")) == GUID{});
}

TEST(Identifier, IsZeroForAnyOtherCount) {
    EXPECT_TRUE(IdentifierFromText(In("6B0F1D32-8E54-4C1B-9A3E-5107D2A488")) == GUID{});
    EXPECT_TRUE(IdentifierFromText(In("6B0F1D32-8E54-4C1B-9A3E-5107D2A4880399")) == GUID{});
    EXPECT_TRUE(IdentifierFromText(In("")) == GUID{});
}

}    // namespace
}    // namespace zck
