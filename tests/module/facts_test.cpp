// What the library tells about itself, through the properties of its objects.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "platform/com_ptr.h"
#include "platform/text.h"
#include "zchromakey/zchromakey.h"

namespace zck {
namespace {

class Facts : public testing::TestWithParam<const CLSID *> {
protected:
    void SetUp() override {
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(DllGetClassObject(*GetParam(), IID_IClassFactory, factory.PutVoid()), S_OK);
        ASSERT_EQ(factory->CreateInstance(nullptr, IID_IZProps, m_props.PutVoid()), S_OK);
    }
    std::string Get(const char *name) {
        Bstr value;
        EXPECT_EQ(m_props->PropsGet(Bstr(TextFromUtf8(name)).get(), value.Put()), S_OK) << name;
        return Utf8FromText(value.view());
    }

    ComPtr<IZProps> m_props;
};

INSTANTIATE_TEST_SUITE_P(Classes, Facts, testing::Values(&CLSID_ZChromaKey, &CLSID_ZKey));

TEST_P(Facts, VersionsAreTheProjects) {
    EXPECT_EQ(Get("dll-version"), ZCK_VERSION);
    EXPECT_EQ(Get("DLL-FILE-VERSION"), ZCK_VERSION);
}

TEST_P(Facts, ThePathIsThatOfTheLibrary) {
    const std::filesystem::path path(Get("dll-path"));
    EXPECT_TRUE(path.is_absolute());
    EXPECT_TRUE(std::filesystem::exists(path)) << path;
    const std::filesystem::path library(ZCK_LIBRARY);
    EXPECT_EQ(path.filename(), std::filesystem::weakly_canonical(library).filename());
}

TEST_P(Facts, TheDateIsThatOfTheBuild) {
    char month[4] = {};
    int day = 0, year = 0, hour = -1, minute = -1, second = -1, used = 0;
    const std::string date = Get("dll-date");
    ASSERT_EQ(std::sscanf(date.c_str(), "%3s %d %d %d:%d:%d%n", month, &day, &year, &hour, &minute, &second, &used), 6) << date;
    EXPECT_EQ(static_cast<size_t>(used), date.size());
    EXPECT_EQ(date.size(), 20U) << date;
    EXPECT_NE(std::string("JanFebMarAprMayJunJulAugSepOctNovDec").find(month), std::string::npos);
    EXPECT_GE(year, 2015);
}

TEST_P(Facts, AreNotStored) {
    int32_t before = -1;
    ASSERT_EQ(m_props->PropsGetCount(nullptr, &before), S_OK);
    // A property of that name can be set and is never seen.
    EXPECT_EQ(m_props->PropsSet(Bstr(TextFromUtf8("dll-version")).get(), Bstr(TextFromUtf8("x")).get()), S_OK);
    EXPECT_EQ(Get("dll-version"), ZCK_VERSION);
    int32_t after = -1;
    ASSERT_EQ(m_props->PropsGetCount(nullptr, &after), S_OK);
    EXPECT_EQ(after, before + 1);
}

}    // namespace
}    // namespace zck
