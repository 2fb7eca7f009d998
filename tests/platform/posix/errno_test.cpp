#include <gtest/gtest.h>

#include <cerrno>

#include "platform/status.h"

namespace zck {
namespace {

TEST(ErrnoTest, BecomesTheStatusOfTheSameMeaning) {
    EXPECT_EQ(SystemErrorStatus(ENOENT, E_FAIL), kErrorFileNotFound);
    EXPECT_EQ(SystemErrorStatus(EACCES, E_FAIL), kErrorAccessDenied);
    EXPECT_EQ(SystemErrorStatus(ENOMEM, E_FAIL), E_OUTOFMEMORY);
    EXPECT_EQ(SystemErrorStatus(ENOSPC, E_FAIL), kErrorDiskFull);
    EXPECT_EQ(SystemErrorStatus(EEXIST, E_FAIL), kErrorAlreadyExists);
    EXPECT_EQ(SystemErrorStatus(EINVAL, E_FAIL), E_INVALIDARG);
    EXPECT_EQ(SystemErrorStatus(ETIMEDOUT, E_FAIL), kErrorTimeout);
}

TEST(ErrnoTest, UnknownNumberIsTheFallback) {
    EXPECT_EQ(SystemErrorStatus(99999, E_UNEXPECTED), E_UNEXPECTED);
    errno = ENOENT;
    EXPECT_EQ(LastSystemError(E_FAIL), kErrorFileNotFound);
}

}    // namespace
}    // namespace zck
