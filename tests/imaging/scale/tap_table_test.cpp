#include "imaging/scale/tap_table.h"

#include <gtest/gtest.h>

#include <numeric>

#include "imaging/scale/scale_dyn.h"

namespace zck {
namespace {

TEST(ScaleDynTaps, ByHeightsModeAndFactor) {
    EXPECT_EQ(ScaleDynTaps(1080, 576, kScaleBothFields, 1.0), 5) << "trunc(1080 * 1.5 / 576 + 1) is 3, raised to 5";
    EXPECT_EQ(ScaleDynTaps(1080, 576, kScaleProgressive, -1.0), 1);
    EXPECT_EQ(ScaleDynTaps(1080, 576, kScaleProgressive, 0.0), 2);
    EXPECT_EQ(ScaleDynTaps(576, 1080, kScaleProgressive, 1.0), 4);
    EXPECT_EQ(ScaleDynTaps(576, 1080, kScaleProgressive, 0.5), 3) << "3 at least";
    EXPECT_EQ(ScaleDynTaps(1080, 108, kScaleProgressive, 1.0), 12) << "12 at most";
    EXPECT_EQ(ScaleDynTaps(1080, 270, kScaleProgressive, 0.5), 4) << "3.5 rounds away from zero";
    EXPECT_EQ(ScaleDynTaps(2000000000, 1, kScaleProgressive, 1e300), 12);
    EXPECT_EQ(ScaleDynTaps(576, 576, kScaleProgressive, 1.0), 1);
    EXPECT_EQ(ScaleDynTaps(576, 576, kScaleBothFields, 1.0), 1);
    EXPECT_EQ(ScaleDynTaps(577, 576, kScaleBothFields, 1.0), 1) << "row for row in the fields";
    EXPECT_EQ(ScaleDynTaps(576, 288, kScaleFirstField, 1.0), 1) << "a field as it stands";
    EXPECT_EQ(ScaleDynTaps(576, 576, kScaleFirstField, 1.0), 4);
}

TEST(TapTables, StatusesAndTheKey) {
    TapTables t;
    EXPECT_EQ(t.Init(0, 4, kScaleProgressive, 4, 1.0), E_INVALIDARG);
    EXPECT_EQ(t.Init(4, 0, kScaleProgressive, 4, 1.0), E_INVALIDARG);
    EXPECT_EQ(t.Init(8, 4, kScaleProgressive, 4, 1.0), S_OK);
    EXPECT_EQ(t.Rows(), 5);
    EXPECT_EQ(t.Init(8, 4, kScaleProgressive, 4, 1.0), S_FALSE);
    EXPECT_EQ(t.Init(0, 4, kScaleProgressive, 4, 1.0), E_INVALIDARG);
    EXPECT_EQ(t.Init(8, 4, kScaleProgressive, 4, 1.0), S_FALSE) << "a refusal changes nothing";
    EXPECT_EQ(t.Init(8, 4, kScaleProgressive, 4, 0.5), S_OK);
    EXPECT_EQ(t.Init(8, 4, kScaleBothFields, 4, 0.5), S_OK);
    EXPECT_EQ(t.Rows(), 3);
    EXPECT_EQ(t.Init(9, 4, kScaleBothFields, 4, 0.5), S_OK);
    EXPECT_EQ(t.Init(9, 5, kScaleBothFields, 4, 0.5), S_OK);
}

TEST(TapTables, WeightsSumTo255AndRowsAreThere) {
    for (const int32_t mode : {0, 1, 2, 3})
        for (const int64_t source : {1, 2, 3, 7, 16, 77})
            for (const int64_t target : {1, 2, 3, 8, 31, 90})
                for (const double factor : {-1.0, 0.0, 0.375, 0.5, 1.0, 1.5})
                    for (const int32_t parity : {0, 1}) {
                        SCOPED_TRACE(testing::Message() << source << " to " << target << ", mode " << mode << ", factor "
                                                        << factor << ", parity " << parity);
                        TapTables t;
                        ASSERT_EQ(t.Init(source, target, mode, ScaleDynTaps(source, target, mode, factor), factor), S_OK);
                        for (int64_t i = 0; i < t.Rows(); ++i) {
                            const TapRow &row = t.Row(parity, i);
                            ASSERT_EQ(std::accumulate(row.nWeight, row.nWeight + kTapsMax, 0), row.nUsed > 0 ? 255 : 0) << i;
                            for (int32_t j = 0; j < row.nUsed; ++j) {
                                ASSERT_GE(row.nSrcRow[j], 0) << i;
                                ASSERT_LT(row.nSrcRow[j], source) << i;
                                ASSERT_TRUE(mode == kScaleProgressive || row.nSrcRow[j] % 2 == parity) << i;
                            }
                        }
                    }
}

// The last row of an even height is out of reach of progressive pictures.
TEST(TapTables, ProgressiveNeverReadsTheLastRowOfAnEvenHeight) {
    TapTables t;
    ASSERT_EQ(t.Init(4, 4, kScaleProgressive, 1, 0.75), S_OK);
    const int32_t rows[4] = {0, 1, 2, 2};
    for (int32_t i = 0; i < 4; ++i) EXPECT_EQ(t.Row(0, i).nSrcRow[0], rows[i]) << i;
    ASSERT_EQ(t.Init(5, 5, kScaleProgressive, 1, 0.75), S_OK);
    EXPECT_EQ(t.Row(0, 4).nSrcRow[0], 4);
}

// Worked by hand: 4 rows to 2, two taps of a triangle with peak 1. Row 1 stands at 2; the row below it has no weight left.
TEST(TapTables, TriangleWithoutAFactor) {
    TapTables t;
    ASSERT_EQ(t.Init(4, 2, kScaleProgressive, 2, 0.0), S_OK);
    EXPECT_EQ(t.Row(0, 1).nSrcRow[0], 2);
    EXPECT_EQ(t.Row(0, 1).nWeight[0], 255);
    EXPECT_EQ(t.Row(0, 1).nUsed, 1) << "nothing is in use behind the tap that fills the sum";
    // 3 rows to 4: row 1 stands at 0.75, a quarter from row 1; row 2 at 1.5, half way.
    ASSERT_EQ(t.Init(3, 4, kScaleProgressive, 2, 0.0), S_OK);
    const TapRow &row = t.Row(0, 1);
    EXPECT_EQ(row.nUsed, 2);
    EXPECT_EQ(row.nSrcRow[0], 1);
    EXPECT_EQ(row.nSrcRow[1], 0);
    EXPECT_EQ(row.nWeight[0], 191) << "255 * 0.75 is 191.25";
    EXPECT_EQ(row.nWeight[1], 64) << "63.75";
    EXPECT_EQ(t.Row(0, 2).nWeight[0], 128) << "half away from zero";
    EXPECT_EQ(t.Row(0, 2).nWeight[1], 127) << "the excess goes";
}

TEST(TapTables, WithoutAnyWeightTheRowCopiesTheFirst) {
    TapTables t;
    // One row has no odd field.
    ASSERT_EQ(t.Init(1, 8, kScaleSecondField, 4, 1.0), S_OK);
    EXPECT_EQ(t.Row(1, 3).nUsed, 0);
    EXPECT_EQ(t.Row(1, 3).nSrcRow[0], 0);
    // Strong enlargement: rows far from all source rows have no weight in 64 bits.
    ASSERT_EQ(t.Init(2, 4000, kScaleProgressive, 3, 0.5), S_OK);
    EXPECT_EQ(t.Row(0, 1000).nUsed, 0);
}

// Tables of very high pictures are made row by row; a row is the same whichever way it is come to.
TEST(TapTables, RowsOfHighPicturesAreMadeOnDemand) {
    TapTables high;
    ASSERT_EQ(high.Init(2000000000, 1000000000, kScaleBothFields, 5, 1.0), S_OK);
    EXPECT_EQ(high.Rows(), 500000001);
    const TapRow row = high.Row(1, 400000000);
    EXPECT_EQ(row.nUsed, 5);
    EXPECT_EQ(row.nSrcRow[0], 1600000003) << "row 800000001 stands at 1600000002, and this is the nearest odd row";
    high.Row(0, 5);
    const TapRow again = high.Row(1, 400000000);
    for (int32_t j = 0; j < kTapsMax; ++j) EXPECT_EQ(again.nSrcRow[j], row.nSrcRow[j]);
    // Below and above the limit the ratio is the same.
    TapTables kept;
    TapTables made;
    ASSERT_EQ(kept.Init(20000, 10000, kScaleProgressive, 6, 1.0), S_OK);
    ASSERT_EQ(made.Init(80000, 40000, kScaleProgressive, 6, 1.0), S_OK);
    for (int64_t i = 100; i < 9900; i += 7)
        for (int32_t j = 0; j < kTapsMax; ++j) {
            ASSERT_EQ(kept.Row(0, i).nSrcRow[j], made.Row(0, i).nSrcRow[j]) << i;
            ASSERT_EQ(kept.Row(0, i).nWeight[j], made.Row(0, i).nWeight[j]) << i;
        }
}

}    // namespace
}    // namespace zck
