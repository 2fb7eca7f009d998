// A picture in bands gives the bytes of the picture in one walk.
#include "keying/spill/spill_rows.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace zck {
namespace {

class Picture final : public SpillSource {
public:
    Picture(int32_t width, int32_t height)
        : m_width(width), m_space(static_cast<size_t>(4 * width * height)), m_pixels(static_cast<size_t>(2 * width * height)) {
        std::mt19937 random(7);
        for (uint8_t &b : m_space) b = static_cast<uint8_t>(random() % 180);
        for (uint8_t &b : m_pixels) b = static_cast<uint8_t>(random());
    }
    const uint8_t *KeyRow(int32_t row, int64_t *bytes) override {
        lowest = std::min(lowest, row);
        highest = std::max(highest, row);
        *bytes = 4 * m_width;
        return &m_space[static_cast<size_t>(4 * m_width * row)];
    }
    uint8_t *Open(int32_t row, uint8_t *) override { return &m_pixels[static_cast<size_t>(2 * m_width * row)]; }
    void Close(int32_t row, uint8_t *) override { closed.push_back(row); }

    const std::vector<uint8_t> &Pixels() const { return m_pixels; }
    std::vector<int32_t> closed;
    int32_t lowest = INT32_MAX;
    int32_t highest = -1;

private:
    int32_t m_width;
    std::vector<uint8_t> m_space;
    std::vector<uint8_t> m_pixels;
};

CHROMA_KEY_RAW Keys(int32_t count) {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = count;
    key.bColorCancel = 1;
    for (int32_t i = 0; i < count; ++i) key.arrKeys[i] = {0x00409050 + i * 0x0A0A0A, 0x00181818, 0, 0, 10, 90, -30, -9, 1, 0};
    return key;
}

class SpillBands : public testing::TestWithParam<int32_t> {};

TEST_P(SpillBands, GiveTheBytesOfOneWalk) {
    const SpillPlan plan = SpillPlanMake(Keys(GetParam()));
    for (const int32_t width : {64, 44, 37}) {    // all columns measured, four left out, five left out
        constexpr int32_t kHeight = 61;
        const SpillShape shape{width, kHeight, DistanceBlocks(width, width), false};
        Picture whole(width, kHeight);
        const std::vector<uint8_t> before = whole.Pixels();
        SpillRows rows;
        rows.Start(&plan, shape, true, 0, kHeight);
        EXPECT_EQ(rows.Begin(), 0);
        EXPECT_EQ(rows.Lag(), width == 64 ? 2 : 2 * plan.count);
        for (int32_t t = 0; t < kHeight + rows.Lag(); ++t) {
            rows.Step(t, &whole);
            EXPECT_EQ(static_cast<int32_t>(whole.closed.size()), std::max(0, t + 1 - rows.Lag()));
        }
        EXPECT_NE(whole.Pixels(), before);

        Picture bands(width, kHeight);
        SpillRows band;
        for (const auto &[first, end] : {std::pair{0, 5}, {5, 30}, {30, 60}, {60, kHeight}}) {
            bands.lowest = INT32_MAX;
            bands.highest = -1;
            band.Start(&plan, shape, true, first, end);
            for (int32_t t = band.Begin(); t < end + band.Lag(); ++t) band.Step(t, &bands);
            EXPECT_EQ(bands.lowest, std::max(first - band.Lag(), 0));
            EXPECT_EQ(bands.highest, std::min(end + band.Lag(), kHeight) - 1);
        }
        EXPECT_EQ(bands.Pixels(), whole.Pixels()) << "width " << width;
        EXPECT_EQ(bands.closed, whole.closed);
    }
}

INSTANTIATE_TEST_SUITE_P(Entries, SpillBands, testing::Values(1, 2, 5, 16));

}    // namespace
}    // namespace zck
