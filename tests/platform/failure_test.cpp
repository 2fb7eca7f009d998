#include "platform/failure.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "platform/status.h"

namespace zck {
namespace {

std::vector<HRESULT> s_heard;

class Failure : public testing::Test {
protected:
    void SetUp() override {
        s_heard.clear();
        FailureTraceSet([](HRESULT hr) noexcept { s_heard.push_back(hr); });
    }
    void TearDown() override { FailureTraceSet(nullptr); }
};

TEST_F(Failure, TheTraceHearsFailuresAndNothingElse) {
    EXPECT_EQ(Noted(S_OK), S_OK);
    EXPECT_EQ(Noted(S_FALSE), S_FALSE);
    EXPECT_EQ(Noted(E_INVALIDARG), E_INVALIDARG);
    EXPECT_EQ(s_heard, (std::vector<HRESULT>{E_INVALIDARG}));
}

TEST_F(Failure, AnExceptionIsHeardOnceAndAStatusOfTheBodyIsLeftToWhoMadeIt) {
    EXPECT_EQ(Guarded([]() -> HRESULT { throw std::bad_alloc(); }), E_OUTOFMEMORY);
    EXPECT_EQ(Guarded([]() -> HRESULT { throw std::runtime_error("x"); }), E_UNEXPECTED);
    EXPECT_EQ(Guarded([]() -> HRESULT { return E_FAIL; }), E_FAIL);
    EXPECT_EQ(s_heard, (std::vector<HRESULT>{E_OUTOFMEMORY, E_UNEXPECTED}));
}

TEST_F(Failure, WithoutATraceTheStatusPasses) {
    const FailureTrace before = FailureTraceSet(nullptr);
    EXPECT_NE(before, nullptr);
    EXPECT_EQ(Noted(E_FAIL), E_FAIL);
    EXPECT_TRUE(s_heard.empty());
}

}    // namespace
}    // namespace zck
