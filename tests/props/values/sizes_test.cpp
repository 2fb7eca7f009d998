#include "props/values/sizes.h"

#include <gtest/gtest.h>

#include "tests/props/values/say.h"

namespace zck {
namespace {

void ExpectSize(const char *text, double value, SizeUnit unit) {
    const SizeValue size = SizeFromText(In(text));
    EXPECT_EQ(size.value, value) << text;
    EXPECT_EQ(size.unit, unit) << text;
}

TEST(SizeFromText, UnitStandsDirectlyBehindTheNumber) {
    ExpectSize("12", 12, SizeUnit::None);
    ExpectSize("12px", 12, SizeUnit::Pixels);
    ExpectSize("12.5pt", 12.5, SizeUnit::Points);
    ExpectSize("12pxy", 12, SizeUnit::Pixels);
    ExpectSize("12 px", 12, SizeUnit::None);
    ExpectSize("12PX", 12, SizeUnit::None);
    ExpectSize("12p", 12, SizeUnit::None);
    ExpectSize("", 0, SizeUnit::None);
}

TEST(SizeFromText, UnitNeedsNoNumber) {
    ExpectSize("px", 0, SizeUnit::Pixels);
    ExpectSize("pt", 0, SizeUnit::Points);
    ExpectSize("%", 0, SizeUnit::Percent);
    ExpectSize(" px", 0, SizeUnit::None);
    ExpectSize("-px", 0, SizeUnit::None);
}

TEST(SizeFromText, PercentageIsNotDivided) { ExpectSize("50%", 50, SizeUnit::Percent); }

TEST(SizeToText, FollowsTheUnit) {
    EXPECT_EQ(Say(SizeToText({12.5, SizeUnit::None})), "12.50");
    EXPECT_EQ(Say(SizeToText({50, SizeUnit::Percent})), "50.000%");
    EXPECT_EQ(Say(SizeToText({12.5, SizeUnit::Pixels})), "13px");
    EXPECT_EQ(Say(SizeToText({-12.5, SizeUnit::Points})), "-13pt");
    EXPECT_EQ(Say(SizeToText({1e300, SizeUnit::Pixels})), "2147483647px");
}

TEST(SizeToText, UnknownUnitIsNone) { EXPECT_EQ(Say(SizeToText({1, static_cast<SizeUnit>(9)})), "1.00"); }

TEST(SizeText, PixelsComeBackAsWritten) { EXPECT_EQ(Say(SizeToText(SizeFromText(In("12px")))), "12px"); }

}    // namespace
}    // namespace zck
