// The names that other programs look for.
#include <gtest/gtest.h>

#include "platform/section.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr uint64_t kId = 0x0ABCDEF012345678;
constexpr wchar_t kGlobal[] = L"Global\\ZBuffer_ABCDEF012345678";
constexpr wchar_t kSession[] = L"ZBuffer_ABCDEF012345678";

TEST(SectionNamesTest, SectionIsFoundByItsGlobalName) {
    Section section;
    ASSERT_EQ(section.Create(kId, 512), S_OK);
    const HANDLE handle = OpenFileMappingW(FILE_MAP_ALL_ACCESS, FALSE, kGlobal);
    EXPECT_NE(handle, nullptr);
    if (handle != nullptr) CloseHandle(handle);
}

TEST(SectionNamesTest, OpensASectionOfTheSessionName) {
    const HANDLE handle = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 512, kSession);
    ASSERT_NE(handle, nullptr);
    Section section;
    EXPECT_EQ(section.Open(kId), S_OK);
    EXPECT_EQ(section.Map(), S_OK);
    EXPECT_GE(section.Size(), 512U);
    section.Close();
    CloseHandle(handle);
    EXPECT_EQ(section.Open(kId), kErrorFileNotFound);
}

TEST(SectionNamesTest, SystemErrorsAreStatuses) {
    EXPECT_EQ(SystemErrorStatus(ERROR_FILE_NOT_FOUND, E_FAIL), kErrorFileNotFound);
    EXPECT_EQ(SystemErrorStatus(ERROR_ALREADY_EXISTS, E_FAIL), kErrorAlreadyExists);
    SetLastError(WAIT_TIMEOUT);
    EXPECT_EQ(static_cast<uint32_t>(LastSystemError(E_FAIL)), 0x80070102U);
}

}    // namespace
}    // namespace zck
