// What a text of a property is, and lists of options.
#include <gtest/gtest.h>

#include <random>

#include "props/store/option_list.h"
#include "props/store/value_kind.h"
#include "tests/conformance/text_tools.h"

namespace conformance {
namespace {

using zck::ValueKind;

// Only a pair of quotes hides what it holds.
ValueKind ModelKind(const std::string &s) {
    bool equals = false, less = false;
    for (size_t i = 0; i < s.size(); ++i) {
        const size_t partner = s[i] == '\'' || s[i] == '"' ? s.find(s[i], i + 1) : std::string::npos;
        if (partner != std::string::npos) i = partner;
        equals = equals || s[i] == '=';
        less = less || s[i] == '<';
    }
    return s.empty() ? ValueKind::Empty : !equals ? ValueKind::Plain : less ? ValueKind::Xml : ValueKind::AttributeList;
}

TEST(ValueKinds, QuotesAreHonoured) {
    const struct {
        const char *text;
        ValueKind kind;
    } rows[] = {{"", ValueKind::Empty},
                {" ", ValueKind::Plain},
                {"x", ValueKind::Plain},
                {"<n><b>1</b></n>", ValueKind::Plain},
                {"<z-props/>", ValueKind::Plain},
                {"'a=b'", ValueKind::Plain},
                {"\"a=b\" '<='", ValueKind::Plain},
                {"a=1", ValueKind::AttributeList},
                {"a='<'", ValueKind::AttributeList},
                {"it's a=b", ValueKind::AttributeList},
                {"it's a=b isn't", ValueKind::Plain},
                {"'\"' a=b \"", ValueKind::AttributeList},
                {"<n a='1'/>", ValueKind::Xml},
                {"a=1 <", ValueKind::Xml},
                {"\" <a x=1>", ValueKind::Xml}};
    for (const auto &row : rows) {
        EXPECT_EQ(zck::ValueKindOf(T(row.text)), row.kind) << row.text;
        EXPECT_EQ(ModelKind(row.text), row.kind) << row.text;
    }
    std::mt19937 random(61);
    for (int i = 0; i < 50000; ++i) {
        const std::string s = AnyOf(random, "a='\"< ", 12);
        ASSERT_EQ(zck::ValueKindOf(T(s)), ModelKind(s)) << s;
    }
}

TEST(OptionLists, AreSplit) {
    const auto split = [](std::string_view values) {
        std::string all;
        const Text text = T(values);
        for (const TextView item : zck::OptionItems(text)) all += "[" + Say(item) + "]";
        return all;
    };
    EXPECT_EQ(split("a|b c|d"), "[a][b c][d]");
    EXPECT_EQ(split("||a||b|"), "[a][b]");
    EXPECT_EQ(split("| |"), "[ ]");
    EXPECT_EQ(split("|"), "");
    EXPECT_EQ(split(" a b\t\r\nc;d,,e; "), "[a][b][c][d][e]");
    EXPECT_EQ(split("a|b,c;d e"), "[a][b,c;d e]");
    EXPECT_EQ(split(""), "");
    EXPECT_EQ(split(" ;,"), "");
    EXPECT_EQ(split("one"), "[one]");
}

}    // namespace
}    // namespace conformance
