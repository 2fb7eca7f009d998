#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "imaging/colour/convert.h"
#include "platform/status.h"
#include "tests/imaging/colour/model.h"
#include "tests/support/formats.h"

namespace zck {
namespace {

using test::Bytes;
using test::ModelPicture;
using test::ModelRecord;
using test::Picture;

const std::vector<eZFCC> kFormats = test::RouteFormats();

// Rows of an independent plan, in any order: each changes nothing but its own bytes, and together they are the whole.
void CheckRows(const ConvertPlan &plan, const Picture &source, const Picture &target, int64_t step) {
    Bytes whole = target.memory;
    ASSERT_EQ(plan.Run(source.memory.data(), whole.data()), S_OK);
    Bytes rows = target.memory;
    std::vector<int32_t> order(static_cast<size_t>(plan.Rows()));
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), std::mt19937(3));
    for (const int32_t y : order) {
        Bytes before = rows;
        plan.RunRows(source.memory.data(), rows.data(), y, y + 1);
        const auto own = static_cast<size_t>(plan.TargetOffset(y));
        for (size_t i = 0; i < rows.size(); ++i)
            if (i >= own && i < own + static_cast<size_t>(step)) before[i] = rows[i];
        ASSERT_EQ(rows, before) << "row " << y;
    }
    ASSERT_EQ(rows, whole);
}

TEST(ConvertPlan, IndependentRowsInAnyOrder) {
    int32_t independent = 0;
    int32_t dependent = 0;
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kFormats)
            for (const int32_t width : {1, 2, 3, 5, 16, 23, 390})
                for (const int32_t height : {-4, 4})
                    for (const int32_t padding : {0, 64}) {
                        const Z_VID_PROPS sp = ModelRecord(from, width, height, padding);
                        const Z_VID_PROPS tp = ModelRecord(to, width, -height, padding);
                        ConvertPlan plan;
                        ASSERT_EQ(plan.Prepare(&sp, &tp), S_OK);
                        EXPECT_EQ(plan.Rows(), 4);
                        EXPECT_EQ(plan.Width(), width);
                        plan.RowsIndependent() ? ++independent : ++dependent;
                        if (!plan.RowsIndependent()) continue;
                        CheckRows(plan, ModelPicture(sp, 1, false), ModelPicture(tp, 2, false), tp.nRowBytes);
                        if (HasFatalFailure()) FAIL() << std::hex << from << " to " << to << std::dec << " width " << width;
                    }
    EXPECT_GT(independent, 100);
    EXPECT_GT(dependent, 20);
}

TEST(ConvertPlan, WhichRowsAreIndependent) {
    const auto independent = [](eZFCC from, eZFCC to, int32_t width, int32_t height, int32_t padding) {
        const Z_VID_PROPS sp = ModelRecord(from, width, height, 0);
        const Z_VID_PROPS tp = ModelRecord(to, width, -height, padding);
        ConvertPlan plan;
        EXPECT_EQ(plan.Prepare(&sp, &tp), S_OK);
        return plan.RowsIndependent();
    };
    EXPECT_TRUE(independent(eZFCC_HDYC, eZFCC_RGB32, 1920, 2, 0));
    EXPECT_FALSE(independent(eZFCC_HDYC, eZFCC_RGB32, 1921, 2, 0));
    EXPECT_FALSE(independent(eZFCC_HDYC, eZFCC_RGB32, 1922, 2, 4));
    EXPECT_TRUE(independent(eZFCC_HDYC, eZFCC_RGB32, 1922, 2, 8));
    EXPECT_TRUE(independent(eZFCC_HDYC, eZFCC_RGB32, 1923, 2, 12));
    EXPECT_TRUE(independent(eZFCC_HDYC, eZFCC_RGB32, 1921, 1, 0));
    EXPECT_FALSE(independent(eZFCC_HDYC, eZFCC_RGB24, 1920, 2, 0));
    EXPECT_TRUE(independent(eZFCC_HDYC, eZFCC_RGB24, 1920, 2, 1920));
    EXPECT_TRUE(independent(eZFCC_UYVY, eZFCC_RGB32, 1921, 2, 0));
    EXPECT_FALSE(independent(eZFCC_RGB32, eZFCC_v210, 1920, 2, 0));
    Z_VID_PROPS sp = ModelRecord(eZFCC_UYVY, 8, 4, 0);
    Z_VID_PROPS tp = ModelRecord(eZFCC_RGB32, 8, -4, 0);
    sp.eInterlace = eZI_Field1First;
    tp.eInterlace = eZI_Field2First;
    ConvertPlan plan;
    ASSERT_EQ(plan.Prepare(&sp, &tp), S_OK);
    EXPECT_FALSE(plan.RowsIndependent());
}

TEST(ConvertPlan, RowsAreCountedFromTheTopOfThePicture) {
    const Z_VID_PROPS sp = ModelRecord(eZFCC_UYVY, 8, 4, 0);
    const Z_VID_PROPS tp = ModelRecord(eZFCC_RGB32, 8, 4, 0);
    ConvertPlan plan;
    ASSERT_EQ(plan.Prepare(&sp, &tp), S_OK);
    EXPECT_EQ(plan.SourceOffset(1), 16);
    EXPECT_EQ(plan.TargetOffset(0), 96);
    EXPECT_EQ(plan.TargetOffset(3), 0);
}

TEST(ConvertPlan, RowsOutsideAreNotRun) {
    const Z_VID_PROPS sp = ModelRecord(eZFCC_UYVY, 8, 4, 0);
    const Z_VID_PROPS tp = ModelRecord(eZFCC_YUY2, 8, 4, 0);
    ConvertPlan plan;
    ASSERT_EQ(plan.Prepare(&sp, &tp), S_OK);
    const Picture source = ModelPicture(sp, 1, false);
    Bytes dst(64, 9);
    plan.RunRows(source.memory.data(), dst.data(), -5, 0);
    plan.RunRows(source.memory.data(), dst.data(), 4, 9);
    plan.RunRows(source.memory.data(), dst.data(), 3, 2);
    EXPECT_EQ(dst, Bytes(64, 9));
    plan.RunRows(source.memory.data(), dst.data(), 3, 9);
    EXPECT_EQ(Bytes(dst.begin(), dst.begin() + 48), Bytes(48, 9));
    EXPECT_EQ(dst[48], source.memory[49]);
}

TEST(ConvertPlan, Statuses) {
    const Z_VID_PROPS good = ModelRecord(eZFCC_UYVY, 8, 4, 0);
    Z_VID_PROPS bad = good;
    ConvertPlan plan;
    EXPECT_EQ(plan.Prepare(nullptr, &good), E_POINTER);
    EXPECT_EQ(plan.Prepare(&good, nullptr), E_POINTER);
    bad.nWidth = 0;
    EXPECT_EQ(plan.Prepare(&good, &bad), E_UNEXPECTED);
    bad = good;
    bad.fccType = eZFCC_YVYU;
    EXPECT_EQ(plan.Prepare(&good, &bad), kVfwEInvalidSubtype);
    EXPECT_EQ(plan.Prepare(&good, 63, &good, 64), kVfwEInvalidMediaType);
    EXPECT_EQ(plan.Prepare(&good, 64, &good, 64), S_OK);
    Bytes image(64);
    EXPECT_EQ(plan.Run(nullptr, image.data()), E_POINTER);
    EXPECT_EQ(plan.Run(image.data(), nullptr), E_POINTER);
}

}    // namespace
}    // namespace zck
