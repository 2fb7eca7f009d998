#include "props/values/times.h"

#include <gtest/gtest.h>

#include "tests/props/values/say.h"

namespace zck {
namespace {

/// Every field but the day of the week, which must be 0.
std::string Fields(const char *text, bool timeOnly = false) {
    const TimeFields t = TimeFromText(In(text), timeOnly);
    EXPECT_EQ(t.dayOfWeek, 0);
    const auto two = [](uint16_t field) { return std::to_string(field); };
    return two(t.year) + "-" + two(t.month) + "-" + two(t.day) + " " + two(t.hour) + ":" + two(t.minute) + ":" + two(t.second) +
           "." + two(t.millisecond);
}

TEST(TimeFromText, TwoFieldsAreHoursAndMinutes) {
    EXPECT_EQ(Fields("1:30"), "0-0-0 1:30:0.0");
    EXPECT_EQ(Fields("12:30"), "0-0-0 12:30:0.0");
}

TEST(TimeFromText, ThreeFieldsHaveSeconds) {
    EXPECT_EQ(Fields("1:30:15"), "0-0-0 1:30:15.0");
    EXPECT_EQ(Fields("11:53:49.25"), "0-0-0 11:53:49.250");
    EXPECT_EQ(Fields("1h30m15s"), "0-0-0 1:30:15.0");
}

TEST(TimeFromText, WithoutHoursOrFractionAllIsTimesSixty) {
    EXPECT_EQ(Fields("90s"), "0-0-0 1:30:0.0");
    EXPECT_EQ(Fields("45"), "0-0-0 0:45:0.0");
    EXPECT_EQ(Fields("30m"), "0-0-0 6:0:0.0");
    EXPECT_EQ(Fields("30M"), "0-0-0 6:0:0.0");
}

TEST(TimeFromText, HoursOrFractionStandAsTheyAre) {
    EXPECT_EQ(Fields("5h"), "0-0-0 5:0:0.0");
    EXPECT_EQ(Fields("5H"), "0-0-0 5:0:0.0");
    EXPECT_EQ(Fields("0.5"), "0-0-0 0:0:0.500");
    EXPECT_EQ(Fields("25:00:00"), "0-0-0 1:0:0.0");
}

TEST(TimeFromText, FieldsBeyondHoursAreNotCounted) { EXPECT_EQ(Fields("9:1:2:3"), "0-0-0 1:2:3.0"); }

TEST(TimeFromText, BlankAtTheEndEndsTheScan) { EXPECT_EQ(Fields("11:53 "), "0-0-0 0:0:0.0"); }

TEST(TimeFromText, NothingIsZero) {
    EXPECT_EQ(Fields(""), "0-0-0 0:0:0.0");
    EXPECT_EQ(Fields("x"), "0-0-0 0:0:0.0");
    EXPECT_EQ(Fields(" "), "0-0-0 0:0:0.0");
}

TEST(TimeFromText, DateAndTime) {
    EXPECT_EQ(Fields("2015-05-07 11:53:49"), "2015-5-7 11:53:49.0");
    EXPECT_EQ(Fields("07.05.2015 11:53:49"), "2015-5-7 11:53:49.0");
    EXPECT_EQ(Fields("07/05/2015 11:53:49.5"), "2015-5-7 11:53:49.500");
    EXPECT_EQ(Fields("  2015- 05-\t07\n11:53:49"), "2015-5-7 11:53:49.0");
}

TEST(TimeFromText, DateNeedsThreeNumbersAndItsSeparators) {
    EXPECT_EQ(Fields("2015-05 11:53:49"), "0-0-0 11:53:49.0");
    EXPECT_EQ(Fields("2015 -05-07 11:53:49"), "0-0-0 11:53:49.0");
    EXPECT_EQ(Fields("Monday 11:53:49"), "0-0-0 11:53:49.0");
}

TEST(TimeFromText, DateFieldsAreCutToSixteenBits) { EXPECT_EQ(Fields("65537--1-70000 0:0:1"), "1-65535-4464 0:0:1.0"); }

TEST(TimeFromText, TimeOnlyHasNoDate) { EXPECT_EQ(Fields("2015-05-07 11:53:49", true), "0-0-0 11:53:49.0"); }

TEST(TimeFromText, OtherCharactersNeitherAddNorClose) {
    // The digits of date and hour run together; no blank stops the scan, so there is no date.
    EXPECT_EQ(TimeFromText(In("2015-05-07T11:53:49"), false).year, 0);
    EXPECT_EQ(Fields("1-0:30"), Fields("10:30"));
}

TEST(TimeFromText, DateAloneIsNoDate) { EXPECT_EQ(Fields("2015-05-07"), "0-0-0 9:47:0.0"); }

TEST(TimeFromText, MillisecondsMayRoundUpToAThousand) { EXPECT_EQ(Fields("0:0:1.9999"), "0-0-0 0:0:1.1000"); }

TEST(TimeFromText, NumbersWithoutEndAreZero) {
    const std::string digits(5000, '9');
    EXPECT_EQ(Fields(digits.c_str()), "0-0-0 0:0:0.0");
    EXPECT_EQ(Fields(("1:" + digits + "0:30").c_str()), "0-0-0 0:0:0.0");
    EXPECT_EQ(Fields(("0." + digits).c_str()), "0-0-0 0:0:0.0");
    EXPECT_EQ(TimeFromText(Text(4 << 20, static_cast<OLECHAR>('0')), false).hour, 0);
    EXPECT_EQ(TimeFromText(In(std::string(300, '9')), false).millisecond, 0);
}

TEST(TimeToText, DateWhenThereIsAYear) {
    TimeFields time;
    time.year = 2015;
    time.month = 5;
    time.day = 7;
    time.hour = 11;
    time.minute = 53;
    time.second = 9;
    EXPECT_EQ(Say(TimeToText(time, false)), "2015-05-07 11:53:09");
    EXPECT_EQ(Say(TimeToText(time, true)), "11:53:09");
    time.millisecond = 12;
    EXPECT_EQ(Say(TimeToText(time, false)), "2015-05-07 11:53:09.012");
    EXPECT_EQ(Say(TimeToText(time, true)), "11:53:09.012");
    time.year = 0;
    EXPECT_EQ(Say(TimeToText(time, false)), "11:53:09.012");
}

TEST(TimeToText, WideFieldsAreNotCut) {
    TimeFields time;
    time.year = 65535;
    time.millisecond = 1000;
    time.hour = 65535;
    EXPECT_EQ(Say(TimeToText(time, false)), "65535-00-00 65535:00:00.1000");
}

TEST(TimeToText, FillsABufferAndGivesNullForNull) {
    OLECHAR buffer[64];
    EXPECT_EQ(TimeToText(TimeFields{}, buffer, false), buffer);
    EXPECT_EQ(Say(buffer), "00:00:00");
    EXPECT_EQ(TimeToText(TimeFields{}, nullptr, false), nullptr);
}

}    // namespace
}    // namespace zck
