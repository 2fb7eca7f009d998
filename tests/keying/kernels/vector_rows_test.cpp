// The vector rows against the reference: every byte of every buffer, guard zones included, for all widths up to four of the
// largest blocks, all misalignments, and fills that reach the ends of the byte range.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "tests/keying/kernels/tables.h"

namespace zck {
namespace {

constexpr int32_t kWidthMax = 4 * 32 + 3;
constexpr size_t kGuard = 64;
constexpr size_t kMisalignments = 32;
constexpr uint8_t kGuardByte = 0xA5;

enum class Fill { Noise, NearZero, NearTop, Ends };
constexpr Fill kFills[] = {Fill::Noise, Fill::NearZero, Fill::NearTop, Fill::Ends};

class VectorRows : public testing::Test {
protected:
    void SetUp() override {
        if (!test::Avx2Here()) GTEST_SKIP() << "this processor has no AVX2: nothing to compare";
        m_seed = std::random_device{}();
        m_random.seed(m_seed);
        std::printf("seed %u\n", m_seed);
    }

    uint8_t Byte(Fill fill) {
        const auto v = static_cast<uint32_t>(m_random());
        switch (fill) {
            case Fill::NearZero:
                return v & 3;
            case Fill::NearTop:
                return static_cast<uint8_t>(255 - (v & 3));
            case Fill::Ends:
                return v & 1 ? 255 : 0;
            default:
                return static_cast<uint8_t>(v >> 8);
        }
    }

    int32_t Below(int32_t n) { return static_cast<int32_t>(static_cast<uint32_t>(m_random()) % static_cast<uint32_t>(n)); }

    const KeyingKernels m_ref = test::RefTable();
    const KeyingKernels m_avx2 = test::Avx2Table();
    std::mt19937 m_random;
    uint32_t m_seed = 0;
};

// `size` bytes at a misalignment, between guard zones. The block ends with the row guard, so that a memory checker sees a
// read too far right of a source made with a guard of 0.
class Row {
public:
    Row(size_t size, size_t misalignment, size_t guard) : m_begin(kGuard + misalignment), m_size(size) {
        m_bytes.assign(m_begin + size + guard, kGuardByte);
    }
    uint8_t *Data() { return m_bytes.data() + m_begin; }
    size_t Size() const { return m_size; }

    // Guards untouched, but for the `over` bytes right of the row.
    bool GuardsHold(size_t over) const {
        for (size_t i = 0; i < m_bytes.size(); ++i) {
            const bool inside = i >= m_begin && i < m_begin + m_size + over;
            if (!inside && m_bytes[i] != kGuardByte) return false;
        }
        return true;
    }
    bool operator==(const Row &other) const { return m_bytes == other.m_bytes; }

private:
    size_t m_begin, m_size;
    std::vector<uint8_t> m_bytes;
};

// Bytes per pixel of the destination and of each source, and what the destination's guard may lose.
struct Shape {
    size_t dst;
    std::vector<size_t> sources;
    size_t over = 0;
    size_t margin = 0;    // source bytes read left and right of the row
};

using Sources = std::vector<const uint8_t *>;

// Runs `call(table, dst, sources, width)` with both tables over all cases.
#define CHECK_ROWS(shape, call)                                 \
    for (const Fill fill : kFills)                              \
        for (int32_t width = 0; width <= kWidthMax; ++width)    \
            for (size_t mis = 0; mis < kMisalignments; ++mis) { \
                CheckCase(shape, fill, width, mis, call);       \
                if (HasFatalFailure()) return;                  \
            }

class VectorRowsCase : public VectorRows {
protected:
    template <class Call>
    void CheckCase(const Shape &shape, Fill fill, int32_t width, size_t mis, Call call) {
        const auto pixels = static_cast<size_t>(width);
        Row one(pixels * shape.dst, mis, kGuard);
        for (size_t i = 0; i < one.Size(); ++i) one.Data()[i] = Byte(fill);
        std::vector<Row> sources;
        for (size_t s = 0; s < shape.sources.size(); ++s) {
            const size_t other = (mis * 11 + pixels + s * 5) % kMisalignments;
            sources.emplace_back(pixels * shape.sources[s] + 2 * shape.margin, other, 0);
            for (size_t i = 0; i < sources[s].Size(); ++i) sources[s].Data()[i] = Byte(fill);
        }
        const std::vector<Row> before = sources;
        Sources pointers;
        for (Row &source : sources) pointers.push_back(source.Data() + shape.margin);
        Row two = one;
        ASSERT_TRUE(one.GuardsHold(0));
        call(m_ref, one.Data(), pointers, width);
        call(m_avx2, two.Data(), pointers, width);
        ASSERT_TRUE(one.GuardsHold(shape.over)) << "reference, width " << width << ", misalignment " << mis;
        ASSERT_TRUE(two.GuardsHold(shape.over)) << "width " << width << ", misalignment " << mis;
        ASSERT_TRUE(one == two) << "width " << width << ", misalignment " << mis << ", fill " << static_cast<int>(fill)
                                << ", seed " << m_seed;
        ASSERT_TRUE(sources == before) << "a source was written";
    }
};

TEST_F(VectorRowsCase, EveryEntryIsFilledAndIsAnotherFunctionThanTheReference) {
    constexpr size_t kEntries = sizeof(KeyingKernels) / sizeof(void *);
    std::array<void *, kEntries> ref = {};
    std::array<void *, kEntries> avx2 = {};
    std::memcpy(ref.data(), &m_ref, sizeof m_ref);
    std::memcpy(avx2.data(), &m_avx2, sizeof m_avx2);
    for (size_t i = 0; i < kEntries; ++i) {
        EXPECT_NE(ref[i], nullptr) << i;
        EXPECT_NE(avx2[i], nullptr) << i;
        EXPECT_NE(ref[i], avx2[i]) << i;
    }
}

TEST_F(VectorRowsCase, Distance) {
    const DistanceKey keys[] = {
        DistanceKeySetup(0x00646464, 0x00282828, 20),         DistanceKeySetup(0x00010101, 0x00404040, 0),
        DistanceKeySetup(0x00FEFEFE, 0x00010101, 255),        DistanceKeySetup(Below(1 << 24), 0x00FFFFFF, 10),
        DistanceKeySetup(Below(1 << 24), Below(1 << 24), 60), DistanceKeySetup(Below(1 << 24), Below(1 << 24), 200),
        DistanceKeySetup(Below(1 << 24), 0x000000FF, 40),     DistanceKeySetup(0x00808080, 0x00FF8040, 46337),
    };
    size_t turn = 0;
    CHECK_ROWS((Shape{1, {4}}), [&](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) {
        // Two calls per case: the same key for both tables.
        t.distance(dst, s[0], width / 8, &keys[turn++ / 2 % std::size(keys)]);
    });
}

// Runs of one colour, which the vector rows may answer as a whole.
TEST_F(VectorRowsCase, DistanceOfFlatRuns) {
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

TEST_F(VectorRowsCase, Join) {
    int32_t c = 0;
    CHECK_ROWS((Shape{1, {1}}), [&](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) {
        t.join(dst, s[0], width, c++ / 2 * 7);
    });
}

TEST_F(VectorRowsCase, JoinWithItself) {
    CHECK_ROWS((Shape{1, {}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.join(dst, dst, width, 9); });
}

TEST_F(VectorRowsCase, InvertWithTheSlipByte) {
    CHECK_ROWS((Shape{1, {}, 1}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.invert(dst, width, true); });
}

TEST_F(VectorRowsCase, InvertWithoutTheSlipByte) {
    CHECK_ROWS((Shape{1, {}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.invert(dst, width, false); });
}

TEST_F(VectorRowsCase, Merge) {
    CHECK_ROWS((Shape{4, {4, 1}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.merge(dst, s[0], s[1], width); });
}

TEST_F(VectorRowsCase, MergeIntoItself) {
    CHECK_ROWS((Shape{4, {1}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.merge(dst, dst, s[0], width); });
}

TEST_F(VectorRowsCase, Premultiply) {
    CHECK_ROWS((Shape{4, {}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.premultiply(dst, width); });
}

TEST_F(VectorRowsCase, MergePremultiply) {
    CHECK_ROWS((Shape{4, {4, 1}}), [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) {
        t.merge_premultiply(dst, s[0], s[1], width);
    });
}

TEST_F(VectorRowsCase, MergePremultiplyInPlace) {
    CHECK_ROWS((Shape{4, {1}}), [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) {
        t.merge_premultiply(dst, dst, s[0], width);
    });
}

TEST_F(VectorRowsCase, ToHls) {
    CHECK_ROWS((Shape{4, {4}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.to_hls(dst, s[0], width); });
}

TEST_F(VectorRowsCase, ToHlsInPlace) {
    CHECK_ROWS((Shape{4, {}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.to_hls(dst, dst, width); });
}

TEST_F(VectorRowsCase, ToYuv) {
    CHECK_ROWS((Shape{4, {4}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.to_yuv(dst, s[0], width); });
}

TEST_F(VectorRowsCase, ToYuvInPlace) {
    CHECK_ROWS((Shape{4, {}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.to_yuv(dst, dst, width); });
}

TEST_F(VectorRowsCase, FromYuv) {
    CHECK_ROWS((Shape{4, {4}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.from_yuv(dst, s[0], width); });
}

TEST_F(VectorRowsCase, FromYuvInPlace) {
    CHECK_ROWS((Shape{4, {}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) { t.from_yuv(dst, dst, width); });
}

// Two rows of one colour, with one byte of one pixel off by a little more or less than the limit allows.
TEST_F(VectorRows, Flat) {
    int32_t answers[2] = {0, 0};
    for (int32_t width = 0; width <= 35; ++width) {
        for (int32_t turn = 0; turn < 400; ++turn) {
            const auto size = static_cast<size_t>(width + 1) * 4;
            const auto mis = static_cast<size_t>(Below(32));
            Row row(size, mis, 0), above(size, static_cast<size_t>(Below(32)), 0);
            const int32_t base = Below(200), off = Below(56);
            for (size_t i = 0; i < size; ++i) {
                // Fourth bytes say nothing.
                row.Data()[i] = static_cast<uint8_t>(i % 4 == 3 ? Below(256) : base);
                above.Data()[i] = static_cast<uint8_t>(i % 4 == 3 ? Below(256) : base);
            }
            uint8_t *odd = (Below(2) == 0 ? row : above).Data() + Below(static_cast<int32_t>(size));
            *odd = static_cast<uint8_t>(base + off);
            const uint8_t first[4] = {static_cast<uint8_t>(base + Below(4) / 3 * 2 * off), static_cast<uint8_t>(base),
                                      static_cast<uint8_t>(base), static_cast<uint8_t>(Below(256))};
            const int32_t limit = off * off + Below(3) - 1;
            const bool one = m_ref.flat(row.Data() + 4, above.Data() + 4, width, first, limit);
            const bool two = m_avx2.flat(row.Data() + 4, above.Data() + 4, width, first, limit);
            ASSERT_EQ(one, two) << "width " << width << ", limit " << limit << ", off by " << off << " at " << odd - row.Data();
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
        Row row(size, 0, 0), above(size, 0, 0);
        for (size_t i = 0; i < size; ++i) {
            row.Data()[i] = static_cast<uint8_t>(Below(most + 1));
            above.Data()[i] = static_cast<uint8_t>(Below(most + 1));
        }
        const int32_t limit = Below(3 * 256 * 256 + 1);
        const uint8_t *over = Below(3) == 0 ? row.Data() : above.Data();
        ASSERT_EQ(m_ref.flat(row.Data() + 4, over + 4, width, row.Data(), limit),
                  m_avx2.flat(row.Data() + 4, over + 4, width, row.Data(), limit))
            << "width " << width << ", limit " << limit << ", bytes up to " << most;
    }
}

TEST_F(VectorRowsCase, AddConst) {
    int32_t c = 0;
    CHECK_ROWS((Shape{1, {}}), [&](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) {
        t.add_const(dst, width, c++ / 2 * 13 - 700);
    });
}

TEST_F(VectorRowsCase, AddPlane) {
    CHECK_ROWS((Shape{1, {1}}),
               [](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) { t.add_plane(dst, s[0], width); });
}

TEST_F(VectorRowsCase, Threshold) {
    int32_t turn = 0;
    CHECK_ROWS((Shape{1, {}}), [&](const KeyingKernels &t, uint8_t *dst, const Sources &, int32_t width) {
        const int32_t pair = turn++ / 2;
        t.threshold(dst, width, pair % 260 - 2, pair * 7 % 260 - 2);
    });
}

TEST_F(VectorRowsCase, Filters) {
    for (const auto filter : {&KeyingKernels::erode, &KeyingKernels::dilate, &KeyingKernels::box, &KeyingKernels::gauss}) {
        CHECK_ROWS((Shape{1, {1, 1, 1}, 0, 1}), [&](const KeyingKernels &t, uint8_t *dst, const Sources &s, int32_t width) {
            (t.*filter)(dst, s[0], s[1], s[2], width);
        });
    }
}

TEST_F(VectorRowsCase, NegativeWidthsDoNothing) {
    const DistanceKey key = DistanceKeySetup(0x00646464, 0x00282828, 20);
    for (const KeyingKernels &t : {m_ref, m_avx2}) {
        for (const int32_t width : {-1, -8, -17, -1000, INT32_MIN}) {
            Row row(64, 0, kGuard);
            std::vector<uint8_t> other(512, 3);
            const uint8_t *src = other.data() + 256;
            t.distance(row.Data(), src, width, &key);
            t.join(row.Data(), src, width, 1);
            t.invert(row.Data(), width, true);
            t.merge(row.Data(), src, src, width);
            t.premultiply(row.Data(), width);
            t.merge_premultiply(row.Data(), src, src, width);
            t.to_hls(row.Data(), src, width);
            t.to_yuv(row.Data(), src, width);
            t.from_yuv(row.Data(), src, width);
            EXPECT_TRUE(t.flat(src, src, width, src, -1));
            t.add_const(row.Data(), width, 1);
            t.add_plane(row.Data(), src, width);
            t.threshold(row.Data(), width, 200, 210);
            for (const auto filter : {t.erode, t.dilate, t.box, t.gauss}) filter(row.Data(), src, src, src, width);
            EXPECT_TRUE(row == Row(64, 0, kGuard)) << width;
        }
    }
}

}    // namespace
}    // namespace zck
