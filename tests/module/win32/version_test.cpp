// The library's version resource as the system reads it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "zchromakey/zchromakey.h"

namespace {

class Version : public testing::Test {
protected:
    void SetUp() override {
        const wchar_t *name = L"ZChromaKey.dll";
        DWORD ignored = 0;
        m_block.resize(GetFileVersionInfoSizeW(name, &ignored));
        ASSERT_FALSE(m_block.empty());
        ASSERT_TRUE(GetFileVersionInfoW(name, 0, static_cast<DWORD>(m_block.size()), m_block.data()));
    }
    template <class T>
    const T *Query(const wchar_t *path) {
        void *found = nullptr;
        UINT size = 0;
        return VerQueryValueW(m_block.data(), path, &found, &size) ? static_cast<const T *>(found) : nullptr;
    }
    static std::string Text(DWORD high, DWORD low) {
        std::string text;
        for (const DWORD part : {high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF}) {
            text += (text.empty() ? "" : ".") + std::to_string(part);
        }
        return text;
    }

    std::vector<uint8_t> m_block;
};

TEST_F(Version, NumbersAreTheProjects) {
    const auto *fixed = Query<VS_FIXEDFILEINFO>(L"\\");
    ASSERT_NE(fixed, nullptr);
    EXPECT_EQ(Text(fixed->dwProductVersionMS, fixed->dwProductVersionLS), ZCK_VERSION);
    EXPECT_EQ(Text(fixed->dwFileVersionMS, fixed->dwFileVersionLS), ZCK_VERSION);
    EXPECT_EQ(fixed->dwFileType, static_cast<DWORD>(VFT_DLL));
}

TEST_F(Version, NamesAreThere) {
    const auto *name = Query<wchar_t>(L"\\StringFileInfo\\040904B0\\OriginalFilename");
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(std::wstring(name), L"ZChromaKey.dll");
}

}    // namespace
