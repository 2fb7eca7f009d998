#include "props/persist/key_tree.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>

#include "tests/props/persist/persist_object.h"

namespace zck {
namespace {

using XMLParse::CoXMLNode;
using XMLParse::XMLNodePtr;

std::string Saved(const CHROMA_KEY_RAW &raw, const CK_ADJUST &adjust) {
    const XMLNodePtr root = CoXMLNode::Create(In("m_config"));
    KeyToTree(raw, adjust, *root);
    return Say(XMLParse::XMLText(*root));
}

CHROMA_KEY_RAW RawOf(std::string_view xml) { return KeyFromTree(*Tree(xml)); }

CK_ADJUST AdjustOf(std::string_view xml, CK_ADJUST before = {}) {
    AdjustFromTree(*Tree(xml), before);
    return before;
}

int32_t Field(std::mt19937 &random) {
    switch (random() % 4) {
        case 0:
            return static_cast<int32_t>(random());
        case 1:
            return static_cast<int32_t>(random() % 512) - 256;
        case 2:
            return random() % 2 != 0 ? INT32_MIN : INT32_MAX;
        default:
            return 0;
    }
}

double Real(std::mt19937 &random) {
    const double part = std::uniform_real_distribution(-1.0, 1.0)(random);
    return random() % 4 == 0 ? part * 1e9 : part;
}

CHROMA_KEY_RAW RandomKey(std::mt19937 &random) {
    CHROMA_KEY_RAW raw = {};
    raw.eType = static_cast<eCK_Type>(Field(random));
    raw.nKeysUsed = static_cast<int32_t>(random() % 19) - 2;
    for (int32_t i = 0; i < KeysUsed(raw); ++i) {
        int32_t words[10];
        for (int32_t &word : words) word = Field(random);
        std::memcpy(&raw.arrKeys[i], words, sizeof(words));
    }
    raw.nMinTransparent = Field(random);
    raw.nMaxTransparent = Field(random);
    raw.nEdgesSmooth = Field(random);
    raw.bColorCancel = static_cast<int32_t>(random() % 2);
    raw.nInterlacedVideo = Field(random);
    raw.nInverseKey = Field(random);
    return raw;
}

CK_ADJUST RandomAdjust(std::mt19937 &random) {
    double reals[16];
    for (double &real : reals) real = Real(random);
    CK_ADJUST adjust;
    std::memcpy(&adjust, reals, sizeof(adjust));
    return adjust;
}

/// What six digits behind the point keep of an adjustment, and one name for two fields.
CK_ADJUST Kept(const CK_ADJUST &adjust) {
    double reals[16];
    std::memcpy(reals, &adjust, sizeof(adjust));
    for (double &real : reals) real = FloatFromText(FloatToText(real, -1));
    CK_ADJUST kept;
    std::memcpy(&kept, reals, sizeof(kept));
    kept.dblTransparent = kept.dblExclTransparent;
    return kept;
}

TEST(KeyTree, AThousandKeysComeBack) {
    std::mt19937 random(20);
    for (int i = 0; i < 1000; ++i) {
        const CHROMA_KEY_RAW raw = RandomKey(random);
        const CK_ADJUST adjust = RandomAdjust(random);
        const std::string text = Saved(raw, adjust);
        ASSERT_EQ(Difference(RawOf(text), raw), "") << text;
        ASSERT_EQ(Difference(AdjustOf(text), Kept(adjust)), "") << text;
    }
}

TEST(KeyTree, IsTheSampleLineForLine) {
    CK_ADJUST adjust = AdjustDefaults();
    adjust.dblTransparent = 0.75;    // leaves no trace
    EXPECT_EQ(Saved(SampleKey(), adjust), kSampleText);
}

TEST(KeyTree, EveryFieldHasItsNameAndPlace) {
    CHROMA_KEY_RAW raw = {};
    int32_t words[sizeof(raw) / 4];
    for (size_t i = 0; i < std::size(words); ++i) words[i] = static_cast<int32_t>(100 + i);
    std::memcpy(&raw, words, sizeof(raw));
    raw.nKeysUsed = 2;
    double reals[16];
    for (int i = 0; i < 16; ++i) reals[i] = i + 0.5;
    CK_ADJUST adjust;
    std::memcpy(&adjust, reals, sizeof(adjust));
    EXPECT_EQ(
        Saved(raw, adjust),
        "<m_config type='100' keys='2' transparent.min='262' transparent.max='263' edges_smooth='264' color_cancel='true' "
        "interlaced='266' inverse='267'>\r\n"
        "\t<key value='0x00000066' delta='0x00000067' smooth='104' alpha='105' cancel.range='106' cancel.power='107' "
        "cancel.chroma='108' cancel.luma='109' cancel.alpha='110' reverse_key='111'/>\r\n"
        "\t<key value='0x00000070' delta='0x00000071' smooth='114' alpha='115' cancel.range='116' cancel.power='117' "
        "cancel.chroma='118' cancel.luma='119' cancel.alpha='120' reverse_key='121'/>\r\n"
        "\t<adjust power='0.5' transparent='7.5' colors='2.5' smooth='3.5' min_trans='4.5' max_trans='5.5' exc_power='6.5'>\r\n"
        "\t\t<color range='8.5' power='9.5' chroma='10.5' luma='11.5' alpha='12.5'/>\r\n"
        "\t\t<range rhy='13.5' glu='14.5' bsv='15.5'/>\r\n"
        "\t</adjust>\r\n"
        "</m_config>");
}

TEST(KeyTree, OneNameHoldsTwoTransparencies) {
    CK_ADJUST adjust = {};
    adjust.dblTransparent = 0.7;
    adjust.dblExclTransparent = 0.2;
    const CK_ADJUST loaded = AdjustOf(Saved({}, adjust));
    EXPECT_EQ(loaded.dblTransparent, 0.2);
    EXPECT_EQ(loaded.dblExclTransparent, 0.2);
}

TEST(KeyTree, AnyColourCancellingIsTrueAndOneAfterwards) {
    CHROMA_KEY_RAW raw = {};
    raw.bColorCancel = 2;
    const std::string text = Saved(raw, {});
    EXPECT_NE(text.find("color_cancel='true'"), std::string::npos);
    EXPECT_EQ(RawOf(text).bColorCancel, 1);
}

TEST(KeyTree, TheCountIsWrittenAsItStands) {
    const auto elements = [](int32_t used) {
        CHROMA_KEY_RAW raw = {};
        raw.nKeysUsed = used;
        const std::string text = Saved(raw, {});
        EXPECT_NE(text.find(" keys='" + std::to_string(used) + "'"), std::string::npos);
        size_t count = 0;
        for (size_t at = text.find("<key"); at != std::string::npos; at = text.find("<key", at + 1)) ++count;
        return count;
    };
    EXPECT_EQ(elements(20), 16u);
    EXPECT_EQ(elements(16), 16u);
    EXPECT_EQ(elements(1), 1u);
    EXPECT_EQ(elements(0), 0u);
    EXPECT_EQ(elements(-3), 0u);
}

TEST(KeyTree, ALoadedCountIsCutFromAboveOnly) {
    EXPECT_EQ(RawOf("<c keys='17'/>").nKeysUsed, 16);
    EXPECT_EQ(RawOf("<c keys='16'/>").nKeysUsed, 16);
    EXPECT_EQ(RawOf("<c keys='-3'/>").nKeysUsed, -3);
    EXPECT_EQ(RawOf("<c keys='x'/>").nKeysUsed, 0);
}

TEST(KeyTree, AnEntryPastTheLastChildIsTheLastChild) {
    const CHROMA_KEY_RAW raw = RawOf("<c keys='2'><key value='5' smooth='7'/></c>");
    EXPECT_EQ(raw.arrKeys[0].nValue, 5);
    EXPECT_EQ(raw.arrKeys[1].nValue, 5);
    EXPECT_EQ(raw.arrKeys[1].nSmoothRange, 7);
    EXPECT_EQ(raw.arrKeys[2].nValue, 0);
}

TEST(KeyTree, ChildrenAreTakenByPositionAndNotSearchedFor) {
    const CHROMA_KEY_RAW late = RawOf("<c keys='2'><adjust/><key value='5'/></c>");
    EXPECT_EQ(late.arrKeys[0].nValue, 0);
    EXPECT_EQ(late.arrKeys[1].nValue, 5);
    // The writer's own order with an entry too few: the position past the entries is `adjust`.
    const CHROMA_KEY_RAW few = RawOf("<c keys='2'><key value='5'/><adjust/></c>");
    EXPECT_EQ(few.arrKeys[0].nValue, 5);
    EXPECT_EQ(few.arrKeys[1].nValue, 0);
    // Text counts as a child.
    const CHROMA_KEY_RAW text = RawOf("<c keys='2'>a text<key value='5'/></c>");
    EXPECT_EQ(text.arrKeys[0].nValue, 0);
    EXPECT_EQ(text.arrKeys[1].nValue, 5);
    EXPECT_EQ(RawOf("<c keys='1'>key</c>").arrKeys[0].nValue, 0);
    EXPECT_EQ(RawOf("<c keys='3'/>").nKeysUsed, 3);
}

TEST(KeyTree, OnlyEntriesInUseAreRead) {
    EXPECT_EQ(RawOf("<c><key value='5'/></c>").arrKeys[0].nValue, 0);
    EXPECT_EQ(RawOf("<c keys='-1'><key value='5'/></c>").arrKeys[0].nValue, 0);
}

TEST(KeyTree, AnElementKeyIsKnownInAnyCase) {
    const XMLNodePtr root = CoXMLNode::Create(In("m_config"));
    root->IntSet(In("KEYS"), 1);
    root->ChildAdd(In("KeY"))->IntSet(In("Smooth"), 9);
    EXPECT_EQ(KeyFromTree(*root).arrKeys[0].nSmoothRange, 9);
    // A letter that only shares its low byte is another name, although searches by name would take it.
    const XMLNodePtr other = CoXMLNode::Create(In("m_config"));
    other->IntSet(In("keys"), 1);
    other->ChildAdd(In("\u016Bey"))->IntSet(In("smooth"), 9);
    EXPECT_EQ(KeyFromTree(*other).arrKeys[0].nSmoothRange, 0);
}

TEST(KeyTree, ColoursOfAnEntryAreReadInTheBaseTheyTell) {
    const auto entry = [](const char *value, const char *delta) {
        return RawOf("<c keys='1'><key value='" + std::string(value) + "' delta='" + delta + "' smooth='010'/></c>").arrKeys[0];
    };
    EXPECT_EQ(entry("16711935", "0x00FF00FF").nValue, 0x00FF00FF);
    EXPECT_EQ(entry("16711935", "0x00FF00FF").nDelta, 0x00FF00FF);
    EXPECT_EQ(entry("017", "-1").nValue, 15);
    EXPECT_EQ(entry("017", "-1").nDelta, -1);
    EXPECT_EQ(entry("0xFF3C8040", "0").nValue, static_cast<int32_t>(0xFF3C8040));
    EXPECT_EQ(entry("", "FF").nValue, 0);
    EXPECT_EQ(entry("", "FF").nDelta, 0);
    EXPECT_EQ(entry("0", "0").nSmoothRange, 10);    // all others are decimals
}

TEST(KeyTree, WhatIsMissingIsZero) {
    EXPECT_EQ(Difference(RawOf("<anything/>"), CHROMA_KEY_RAW{}), "");
    EXPECT_EQ(RawOf("<c color_cancel='yes'/>").bColorCancel, 1);
    EXPECT_EQ(RawOf("<c color_cancel='no'/>").bColorCancel, 0);
    EXPECT_EQ(RawOf("<c color_cancel='2'/>").bColorCancel, 1);
}

TEST(KeyTree, AMissingAdjustmentStaysAndAnEmptyOneIsZero) {
    const CK_ADJUST before = AdjustDefaults();
    EXPECT_EQ(Difference(AdjustOf("<c power='0.5'/>", before), before), "");
    EXPECT_EQ(Difference(AdjustOf("<c><adjust/></c>", before), before), "");
    CK_ADJUST expected = before;
    expected.dblPower = 0.5;
    expected.dblSmooth = 0;
    expected.colAdjust.dblCancelLuma = 0.25;
    EXPECT_EQ(
        Difference(AdjustOf("<c><adjust power='50%' smooth=''><color luma='.25'/></adjust><adjust power='0.1'/></c>", before),
                   expected),
        "");
}

TEST(KeyTree, TheAdjustmentIsFoundWhereverItStands) {
    EXPECT_EQ(AdjustOf("<c><x/>text<adjust power='0.5'/><key/></c>").dblPower, 0.5);
    EXPECT_EQ(AdjustOf("<c><x><adjust power='0.5'/></x></c>").dblPower, 0.0);
}

}    // namespace
}    // namespace zck
