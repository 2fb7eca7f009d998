#include "xml/chars.h"

#include <gtest/gtest.h>

#include <set>

namespace zck::XMLParse {
namespace {

/// Every unit that belongs to the class and no other one.
template <class InClass>
void ExpectMembers(InClass inClass, const std::set<uint32_t> &members) {
    for (uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
        EXPECT_EQ(inClass(static_cast<OLECHAR>(unit)), members.contains(unit)) << std::hex << unit;
    }
}

/// All from U+FDEF on.
std::set<uint32_t> HighSpaces() {
    std::set<uint32_t> units;
    for (uint32_t unit = 0xFDEF; unit <= 0xFFFF; ++unit) units.insert(units.end(), unit);
    return units;
}

TEST(Chars, SpacesStartAgainHighUp) {
    std::set<uint32_t> units = HighSpaces();
    units.insert({'\n', '\r', '\t'});
    ExpectMembers(IsSpaceNoBlank, units);
    units.insert(' ');
    ExpectMembers(IsSpace, units);
}

TEST(Chars, NamesHaveAllButSpacesAndSigns) {
    std::set<uint32_t> others = HighSpaces();
    others.insert({0, ' ', '\n', '\r', '\t', ';', ',', '<', '>', '/', '\\', '='});
    ExpectMembers([](OLECHAR c) { return !IsNameChar(c); }, others);
}

TEST(Chars, ItemsAreSeparatedByNoHighSpaces) { ExpectMembers(IsItemSeparator, {' ', '\n', '\r', '\t', ';', ','}); }

}    // namespace
}    // namespace zck::XMLParse
