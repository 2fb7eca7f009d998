// The vector rows against the reference: every byte of every buffer, guard zones included, for all widths up to four of the
// largest blocks, all misalignments, and fills that reach the ends of the byte range.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <vector>

#include "tests/keying/kernels/tables.h"

namespace zck {
namespace {

using test::Bytes;
using test::Sources;

constexpr int32_t kWidths = 4 * 32 + 4;

class VectorRows : public testing::Test {
protected:
    void SetUp() override {
        if (!CpuHasAvx2()) GTEST_SKIP() << "this processor has no AVX2: nothing to compare";
        m_ref = test::RefTable();
        m_avx2 = test::Avx2Table();
    }

    int32_t Below(int32_t n) { return static_cast<int32_t>(static_cast<uint32_t>(m_random()) % static_cast<uint32_t>(n)); }

    // `dst` and `sources`: bytes a pixel. `over`: what the target's guard may lose. `margin`: source bytes read left and right.
    template <class Call>
    void Check(int64_t dst, const std::vector<int64_t> &sources, const Call &call, int64_t over = 0, int64_t margin = 0) {
        test::KernelShape shape = {test::Times(0), test::Times(dst), kWidths};
        shape.over = over;
        shape.margin = margin;
        for (size_t i = 0; i < sources.size(); ++i) {
            if (i == 0)
                shape.src = test::Times(sources[i]);
            else
                shape.others.push_back(test::Times(sources[i]));
        }
        const char *name = testing::UnitTest::GetInstance()->current_test_info()->name();
        test::CheckKernel(name, m_ref, m_avx2, shape, call);
    }

    KeyingKernels m_ref = {};
    KeyingKernels m_avx2 = {};
    std::mt19937 m_random{test::Seed()};
};

TEST_F(VectorRows, EveryEntryIsFilledAndIsAnotherFunctionThanTheReference) { test::ExpectAllEntriesDiffer(m_ref, m_avx2); }

TEST_F(VectorRows, Distance) {
    const DistanceKey keys[] = {
        DistanceKeySetup(0x00646464, 0x00282828, 20),         DistanceKeySetup(0x00010101, 0x00404040, 0),
        DistanceKeySetup(0x00FEFEFE, 0x00010101, 255),        DistanceKeySetup(Below(1 << 24), 0x00FFFFFF, 10),
        DistanceKeySetup(Below(1 << 24), Below(1 << 24), 60), DistanceKeySetup(Below(1 << 24), Below(1 << 24), 200),
        DistanceKeySetup(Below(1 << 24), 0x000000FF, 40),     DistanceKeySetup(0x00808080, 0x00FF8040, 46337),
    };
    size_t turn = 0;
    Check(1, {4}, [&](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) {
        // Two calls per case: the same key for both tables.
        t.distance(dst, s[0], width / 8, &keys[turn++ / 2 % std::size(keys)]);
    });
}

// Runs of one colour, which the vector rows may answer as a whole.
TEST_F(VectorRows, DistanceOfFlatRuns) {
    const DistanceKey key = DistanceKeySetup(0x00646464, 0x00282828, 20);
    std::vector<uint8_t> src(4 * 64);
    std::array<uint8_t, 64> one;
    std::array<uint8_t, 64> two;
    for (int first = 0; first < 256; ++first) {
        for (const int second : {first, first + 1, 100, 255}) {
            for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<uint8_t>(i % 124 == 60 ? second : first);
            m_ref.distance(one.data(), src.data(), 8, &key);
            m_avx2.distance(two.data(), src.data(), 8, &key);
            ASSERT_EQ(one, two) << first << ' ' << second;
        }
    }
}

TEST_F(VectorRows, Join) {
    int32_t c = 0;
    Check(1, {1}, [&](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) {
        t.join(dst, s[0], width, c++ / 2 * 7);
    });
}

TEST_F(VectorRows, JoinWithItself) {
    Check(1, {}, [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.join(dst, dst, width, 9); });
}

TEST_F(VectorRows, InvertWithTheSlipByte) {
    Check(
        1, {}, [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.invert(dst, width, true); }, 1);
}

TEST_F(VectorRows, InvertWithoutTheSlipByte) {
    Check(1, {}, [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.invert(dst, width, false); });
}

TEST_F(VectorRows, Merge) {
    Check(4, {4, 1},
          [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.merge(dst, s[0], s[1], width); });
}

TEST_F(VectorRows, MergeIntoItself) {
    Check(4, {1},
          [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.merge(dst, dst, s[0], width); });
}

TEST_F(VectorRows, Premultiply) {
    Check(4, {}, [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.premultiply(dst, width); });
}

TEST_F(VectorRows, MergePremultiply) {
    Check(4, {4, 1}, [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) {
        t.merge_premultiply(dst, s[0], s[1], width);
    });
}

TEST_F(VectorRows, MergePremultiplyInPlace) {
    Check(4, {1}, [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) {
        t.merge_premultiply(dst, dst, s[0], width);
    });
}

TEST_F(VectorRows, ToHls) {
    Check(4, {4}, [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.to_hls(dst, s[0], width); });
}

TEST_F(VectorRows, ToHlsInPlace) {
    Check(4, {}, [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.to_hls(dst, dst, width); });
}

TEST_F(VectorRows, ToYuv) {
    Check(4, {4}, [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.to_yuv(dst, s[0], width); });
}

TEST_F(VectorRows, ToYuvInPlace) {
    Check(4, {}, [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.to_yuv(dst, dst, width); });
}

TEST_F(VectorRows, FromYuv) {
    Check(4, {4}, [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.from_yuv(dst, s[0], width); });
}

TEST_F(VectorRows, FromYuvInPlace) {
    Check(4, {}, [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.from_yuv(dst, dst, width); });
}

// Two rows of one colour, with one byte of one pixel off by a little more or less than the limit allows.
TEST_F(VectorRows, Flat) {
    int32_t answers[2] = {0, 0};
    for (int32_t width = 0; width <= 35; ++width) {
        for (int32_t turn = 0; turn < 400; ++turn) {
            const auto size = static_cast<size_t>(width + 1) * 4;
            // Each block ends with its row, for address checkers.
            Bytes rowBlock(static_cast<size_t>(Below(32)) + size), aboveBlock(static_cast<size_t>(Below(32)) + size);
            uint8_t *const row = rowBlock.data() + rowBlock.size() - size;
            uint8_t *const above = aboveBlock.data() + aboveBlock.size() - size;
            const int32_t base = Below(200), off = Below(56);
            for (size_t i = 0; i < size; ++i) {
                // Fourth bytes say nothing.
                row[i] = static_cast<uint8_t>(i % 4 == 3 ? Below(256) : base);
                above[i] = static_cast<uint8_t>(i % 4 == 3 ? Below(256) : base);
            }
            uint8_t *odd = (Below(2) == 0 ? row : above) + Below(static_cast<int32_t>(size));
            *odd = static_cast<uint8_t>(base + off);
            const uint8_t first[4] = {static_cast<uint8_t>(base + Below(4) / 3 * 2 * off), static_cast<uint8_t>(base),
                                      static_cast<uint8_t>(base), static_cast<uint8_t>(Below(256))};
            const int32_t limit = off * off + Below(3) - 1;
            const bool one = m_ref.flat(row + 4, above + 4, width, first, limit);
            const bool two = m_avx2.flat(row + 4, above + 4, width, first, limit);
            ASSERT_EQ(one, two) << "width " << width << ", limit " << limit << ", off by " << off << " at " << odd - row << ", "
                                << test::Replay();
            ++answers[one];
        }
    }
    EXPECT_GT(answers[0], 1000);
    EXPECT_GT(answers[1], 1000);
}

TEST_F(VectorRows, FlatOfNoise) {
    for (int32_t turn = 0; turn < 20000; ++turn) {
        const int32_t width = Below(50), most = 1 + Below(255);
        const auto size = static_cast<size_t>(width + 1) * 4;
        Bytes row(size), above(size);
        for (size_t i = 0; i < size; ++i) {
            row[i] = static_cast<uint8_t>(Below(most + 1));
            above[i] = static_cast<uint8_t>(Below(most + 1));
        }
        const int32_t limit = Below(3 * 256 * 256 + 1);
        const uint8_t *over = Below(3) == 0 ? row.data() : above.data();
        ASSERT_EQ(m_ref.flat(row.data() + 4, over + 4, width, row.data(), limit),
                  m_avx2.flat(row.data() + 4, over + 4, width, row.data(), limit))
            << "width " << width << ", limit " << limit << ", bytes up to " << most << ", " << test::Replay();
    }
}

TEST_F(VectorRows, AddConst) {
    int32_t c = 0;
    Check(1, {}, [&](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) {
        t.add_const(dst, width, c++ / 2 * 13 - 700);
    });
}

TEST_F(VectorRows, AddPlane) {
    Check(1, {1}, [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.add_plane(dst, s[0], width); });
}

TEST_F(VectorRows, Threshold) {
    int32_t turn = 0;
    Check(1, {}, [&](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) {
        const int32_t pair = turn++ / 2;
        t.threshold(dst, width, pair % 260 - 2, pair * 7 % 260 - 2);
    });
}

TEST_F(VectorRows, Filters) {
    for (const auto filter : {&KeyingKernels::erode, &KeyingKernels::dilate, &KeyingKernels::box, &KeyingKernels::gauss}) {
        Check(
            1, {1, 1, 1},
            [&](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) {
                (t.*filter)(dst, s[0], s[1], s[2], width);
            },
            0, 1);
    }
}

TEST_F(VectorRows, NegativeWidthsDoNothing) {
    const DistanceKey key = DistanceKeySetup(0x00646464, 0x00282828, 20);
    for (const KeyingKernels &t : {m_ref, m_avx2}) {
        for (const int32_t width : {-1, -8, -17, -1000, INT32_MIN}) {
            Bytes row(256, 0xA5);
            std::vector<uint8_t> other(512, 3);
            const uint8_t *src = other.data() + 256;
            t.distance(&row[64], src, width, &key);
            t.join(&row[64], src, width, 1);
            t.invert(&row[64], width, true);
            t.merge(&row[64], src, src, width);
            t.premultiply(&row[64], width);
            t.merge_premultiply(&row[64], src, src, width);
            t.to_hls(&row[64], src, width);
            t.to_yuv(&row[64], src, width);
            t.from_yuv(&row[64], src, width);
            EXPECT_TRUE(t.flat(src, src, width, src, -1));
            t.add_const(&row[64], width, 1);
            t.add_plane(&row[64], src, width);
            t.threshold(&row[64], width, 200, 210);
            for (const auto filter : {t.erode, t.dilate, t.box, t.gauss}) filter(&row[64], src, src, src, width);
            EXPECT_EQ(row, Bytes(256, 0xA5)) << width;
        }
    }
}

}    // namespace
}    // namespace zck
