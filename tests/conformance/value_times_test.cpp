// Times and their texts, against tables and slow models.
#include <gtest/gtest.h>

#include <random>

#include "props/values/typed_value.h"
#include "tests/conformance/text_tools.h"
#include "tests/conformance/value_model.h"

namespace conformance {
namespace {

zck::TimeFields FieldsOf(const ModelTime &m) {
    zck::TimeFields t;
    for (int i = 0; i < 8; ++i) reinterpret_cast<uint16_t *>(&t)[i] = static_cast<uint16_t>(m.f[i]);
    return t;
}

std::string SayFields(const zck::TimeFields &t) {
    std::string s;
    for (const int v : {t.year, t.month, t.dayOfWeek, t.day, t.hour, t.minute, t.second, t.millisecond})
        s += std::to_string(v) + " ";
    return s;
}

TEST(Times, ToText) {
    const struct {
        zck::TimeFields time;
        const char *all;
        const char *timeOnly;
    } rows[] = {{{2015, 5, 4, 7, 11, 53, 49, 0}, "2015-05-07 11:53:49", "11:53:49"},
                {{2015, 5, 4, 7, 11, 53, 49, 7}, "2015-05-07 11:53:49.007", "11:53:49.007"},
                {{0, 5, 0, 7, 1, 2, 3, 0}, "01:02:03", "01:02:03"},
                {{0, 0, 0, 0, 0, 0, 0, 120}, "00:00:00.120", "00:00:00.120"},
                {{5, 0, 0, 0, 100, 0, 0, 1000}, "0005-00-00 100:00:00.1000", "100:00:00.1000"}};
    for (const auto &row : rows) {
        EXPECT_EQ(Say(zck::TimeToText(row.time, false)), row.all);
        EXPECT_EQ(Say(zck::TimeToText(row.time, true)), row.timeOnly);
        OLECHAR buffer[64];
        EXPECT_EQ(zck::TimeToText(row.time, buffer, false), buffer);
        EXPECT_EQ(Say(TextView(buffer)), row.all);
    }
    EXPECT_EQ(zck::TimeToText(zck::TimeFields{}, nullptr, true), nullptr);
}

TEST(Times, FromText) {
    const struct {
        const char *text;
        const char *fields;
    } rows[] = {{"", "0 0 0 0 0 0 0 0 "},
                {"1:30", "0 0 0 0 1 30 0 0 "},
                {"1:30:15", "0 0 0 0 1 30 15 0 "},
                {"90s", "0 0 0 0 1 30 0 0 "},
                {"45", "0 0 0 0 0 45 0 0 "},
                {"30m", "0 0 0 0 6 0 0 0 "},
                {"5h", "0 0 0 0 5 0 0 0 "},
                {"5H", "0 0 0 0 5 0 0 0 "},
                {"1h30m", "0 0 0 0 1 30 0 0 "},
                {"0.5", "0 0 0 0 0 0 0 500 "},
                {"11:53 ", "0 0 0 0 0 0 0 0 "},
                {"11:53:49.120", "0 0 0 0 11 53 49 120 "},
                {"11:53:49.9996", "0 0 0 0 11 53 49 1000 "},
                {"25:00", "0 0 0 0 1 0 0 0 "},
                {"2015-05-07 11:53:49", "2015 5 0 7 11 53 49 0 "},
                {"2015-05-07\t11:53:49", "2015 5 0 7 11 53 49 0 "},
                {"07.05.2015 11:53:49", "2015 5 0 7 11 53 49 0 "},
                {"07/05/2015 11:53", "2015 5 0 7 11 53 0 0 "},
                {"2015-05-07 11:53:49.25", "2015 5 0 7 11 53 49 250 "},
                {"2015-05-07T11:53:49", "0 0 0 0 7 53 49 0 "},
                {"87467x765970241M 1:00", "0 0 0 0 1 0 0 0 "},
                {"87467x765970241M", "0 0 0 0 0 59 44 0 "},
                {"2015-05-07", "0 0 0 0 9 47 0 0 "},
                {"2015-05 11:53", "0 0 0 0 11 53 0 0 "},
                {"on 2015-05-07 11:53", "0 0 0 0 11 53 0 0 "},
                {"2015-05-07x 11:53", "2015 5 0 7 11 53 0 0 "},
                {"70000-1-2 1:00", "4464 1 0 2 1 0 0 0 "}};
    for (const auto &row : rows) {
        EXPECT_EQ(SayFields(zck::TimeFromText(T(row.text), false)), row.fields) << row.text;
        zck::TimeFields only = zck::TimeFromText(T(row.text), false);
        only.year = only.month = only.day = 0;
        EXPECT_EQ(SayFields(zck::TimeFromText(T(row.text), true)), SayFields(only)) << row.text;
    }
    EXPECT_EQ(SayFields(zck::TimeFromText(kNothing, false)), "0 0 0 0 0 0 0 0 ");
}

TEST(Times, AsTheModel) {
    std::mt19937 random(37);
    const char *const dates[] = {"",     "",   "2015-05-07 ", "7/5/2015 ",    "07.05.2015\t",
                                 "1-2 ", "x ", "1.2.3.4 ",    "12-13-14-15 ", "1/2-3 "};
    int dated = 0;
    for (int i = 0; i < 60000; ++i) {
        std::string clock;
        const int parts = static_cast<int>(random() % 5);
        for (int p = 0; p <= parts; ++p)
            clock += AnyOf(random, "0123456789", 3) + AnyOf(random, i % 2 != 0 ? ":." : ":.HhMmSsx-T ", 1);
        const std::string s = OneOf(random, dates) + clock;
        if (!s.empty() && (s[0] == ' ' || s[0] == '\t')) continue;
        const bool timeOnly = random() % 4 == 0;
        const zck::TimeFields got = zck::TimeFromText(T(s), timeOnly);
        ASSERT_EQ(SayFields(got), SayFields(FieldsOf(ModelTimeOf(s, timeOnly)))) << "\"" << s << "\"";
        if (got.year != 0) ++dated;
    }
    EXPECT_GT(dated, 10000);
}

TEST(Times, WrittenTimesAreReadBack) {
    std::mt19937 random(38);
    for (int i = 0; i < 5000; ++i) {
        ModelTime m;
        const int ranges[] = {9999, 12, 1, 31, 24, 60, 60, 1000};
        for (int f = 0; f < 8; ++f) m.f[f] = static_cast<int>(random() % static_cast<unsigned>(ranges[f]));
        if (i % 3 == 0) m.f[0] = m.f[1] = m.f[3] = 0;
        if (i % 2 == 0) m.f[7] = 0;
        const zck::TimeFields t = FieldsOf(m);
        for (const bool timeOnly : {false, true}) {
            ASSERT_EQ(Say(zck::TimeToText(t, timeOnly)), ModelTimeText(m, timeOnly));
            ModelTime back = m;
            if (timeOnly || m.f[0] == 0) back.f[0] = back.f[1] = back.f[3] = 0;
            ASSERT_EQ(SayFields(zck::TimeFromText(zck::TimeToText(t, timeOnly), timeOnly)), SayFields(FieldsOf(back)));
        }
    }
}

}    // namespace
}    // namespace conformance
