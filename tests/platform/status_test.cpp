#include "platform/status.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace zck {
namespace {

TEST(StatusTest, GuardTurnsExceptionsIntoStatuses) {
    EXPECT_EQ(Guarded([] { return S_FALSE; }), S_FALSE);
    EXPECT_EQ(Guarded([]() -> HRESULT { throw std::bad_alloc(); }), E_OUTOFMEMORY);
    EXPECT_EQ(Guarded([]() -> HRESULT { throw std::length_error("size"); }), E_UNEXPECTED);
    EXPECT_EQ(Guarded([]() -> HRESULT { throw 1; }), E_UNEXPECTED);
}

TEST(StatusTest, NoSystemErrorIsTheFallback) {
    EXPECT_EQ(SystemErrorStatus(0, E_FAIL), E_FAIL);
    EXPECT_EQ(SystemErrorStatus(0, kVfwEWrongState), kVfwEWrongState);
}

TEST(StatusTest, CodesHaveTheirPrintedValues) {
    EXPECT_EQ(static_cast<uint32_t>(kErrorTimeout), 0x80070000U + 1460);
    EXPECT_EQ(static_cast<uint32_t>(kErrorEmpty), 0x80070000U + 4306);
    EXPECT_EQ(static_cast<uint32_t>(kErrorInvalidIndex), 0x80070000U + 1413);
    EXPECT_EQ(static_cast<uint32_t>(kErrorAlreadyExists), 0x80070000U + 183);
}

}    // namespace
}    // namespace zck
