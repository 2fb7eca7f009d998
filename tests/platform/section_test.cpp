#include "platform/section.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/process.h"
#include "platform/status.h"

namespace zck {
namespace {

/// Numbers that no other test process uses.
uint64_t TestId(uint64_t n) { return 0xC0DE000000000000U + (static_cast<uint64_t>(CurrentProcessId()) << 16) + n; }

TEST(SectionTest, IsZeroAndSharedBetweenHandles) {
    Section a;
    ASSERT_EQ(a.Create(TestId(1), 1536), S_OK);
    ASSERT_EQ(a.Map(), S_OK);
    ASSERT_GE(a.Size(), 1536U);
    for (uint64_t i = 0; i < a.Size(); ++i) ASSERT_EQ(a.View()[i], 0);
    Section b;
    ASSERT_EQ(b.Open(TestId(1)), S_OK);
    ASSERT_EQ(b.Map(), S_OK);
    EXPECT_EQ(b.Map(), S_OK) << "mapped once";
    EXPECT_GE(b.Size(), 1536U);
    EXPECT_NE(a.View(), b.View());
    a.View()[1535] = 77;
    EXPECT_EQ(b.View()[1535], 77);
    b.View()[0] = 33;
    EXPECT_EQ(a.View()[0], 33);
}

TEST(SectionTest, ReportsANumberThatIsTaken) {
    Section a;
    ASSERT_EQ(a.Create(TestId(2), 512), S_OK);
    Section b;
    EXPECT_EQ(b.Create(TestId(2), 512), S_FALSE);
    EXPECT_FALSE(b.IsOpen());
    EXPECT_EQ(b.Create(TestId(3), 512), S_OK);
    a.Close();
    EXPECT_EQ(a.Create(TestId(2), 512), S_OK);
}

TEST(SectionTest, EndsWithItsLastHandleWhicheverThatIs) {
    Section creator;
    Section opener;
    Section third;
    ASSERT_EQ(creator.Create(TestId(4), 512), S_OK);
    ASSERT_EQ(opener.Open(TestId(4)), S_OK);
    creator.Close();
    EXPECT_EQ(third.Open(TestId(4)), S_OK) << "a handle is open";
    EXPECT_EQ(creator.Create(TestId(4), 512), S_FALSE);
    third.Close();
    opener.Close();
    EXPECT_EQ(third.Open(TestId(4)), kErrorFileNotFound);
    EXPECT_FALSE(third.IsOpen());
}

TEST(SectionTest, NobodyHoldsTheNumber) {
    Section section;
    EXPECT_EQ(section.Open(TestId(5)), kErrorFileNotFound);
    EXPECT_EQ(section.Open(0), kErrorFileNotFound);
}

TEST(SectionTest, RefusesNoBytes) {
    Section section;
    EXPECT_EQ(section.Create(TestId(6), 0), E_INVALIDARG);
    EXPECT_EQ(section.Open(TestId(6)), kErrorFileNotFound);
}

TEST(SectionTest, CloseIsSafeWhenClosed) {
    Section section;
    section.Close();
    EXPECT_EQ(section.Map(), E_UNEXPECTED);
    ASSERT_EQ(section.Create(TestId(7), 512), S_OK);
    ASSERT_EQ(section.Map(), S_OK);
    section.Close();
    section.Close();
    EXPECT_EQ(section.View(), nullptr);
    EXPECT_EQ(section.Size(), 0U);
    EXPECT_FALSE(section.IsOpen());
}

TEST(SectionTest, MoreThanTheSystemHasIsAStatusAndLeavesNothing) {
    Section section;
    const HRESULT hr = section.Create(TestId(8), uint64_t{1} << 50);
    EXPECT_TRUE(FAILED(hr)) << std::hex << hr;
    EXPECT_FALSE(section.IsOpen());
    EXPECT_EQ(section.Open(TestId(8)), kErrorFileNotFound);
    EXPECT_EQ(section.Create(TestId(8), 512), S_OK);
}

TEST(SectionTest, HighestNumber) {
    Section section;
    ASSERT_EQ(section.Create(0xFFFFFFFFFFFFFFFFU, 512), S_OK);
    Section other;
    EXPECT_EQ(other.Open(0xFFFFFFFFFFFFFFFFU), S_OK);
}

}    // namespace
}    // namespace zck
