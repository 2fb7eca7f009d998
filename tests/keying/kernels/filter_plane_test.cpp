#include "keying/kernels/filter_plane.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include "keying/kernels/kernels.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

// A plane with rows further apart than they are wide; the bytes between them must survive.
struct Plane {
    int32_t width, height;
    ptrdiff_t stride;
    Bytes bytes;

    Plane(int32_t w, int32_t h) : width(w), height(h), stride(w + 5), bytes(static_cast<size_t>(stride * h)) {
        std::mt19937 random(static_cast<uint32_t>(w * 1000 + h));
        for (uint8_t &b : bytes) b = static_cast<uint8_t>(random());
    }
    uint8_t &At(ptrdiff_t x, ptrdiff_t y) { return bytes[static_cast<size_t>(y * stride + x)]; }
};

// Gathers the neighbourhood of each interior pixel of the unchanged input.
Plane Expected(const Plane &plane, const std::function<int(const std::vector<int> &)> &rule) {
    Plane in = plane;
    Plane out = plane;
    for (int32_t y = 1; y < plane.height - 1; ++y) {
        for (int32_t x = 1; x < plane.width - 1; ++x) {
            std::vector<int> cells;
            for (int32_t j = -1; j <= 1; ++j)
                for (int32_t i = -1; i <= 1; ++i) cells.push_back(in.At(x + i, y + j));
            out.At(x, y) = static_cast<uint8_t>(rule(cells));
        }
    }
    return out;
}

int Least(const std::vector<int> &c) { return *std::min_element(c.begin(), c.end()); }
int Most(const std::vector<int> &c) { return *std::max_element(c.begin(), c.end()); }

int BoxRule(const std::vector<int> &c) {
    int s = 5;
    for (const int v : c) s += v;
    return s * 455 >> 12;
}

int GaussRule(const std::vector<int> &c) {
    const int s = c[0] + c[2] + c[6] + c[8] + 2 * (c[1] + c[3] + c[5] + c[7]) + 4 * c[4];
    return (s + 7 + ((s >> 4) & 1)) >> 4;
}

constexpr int32_t kSides[] = {3, 4, 5, 33, 34, 35, 66, 100};

template <class F>
void EachSize(F check) {
    for (const int32_t w : kSides)
        for (const int32_t h : {3, 4, 7}) check(Plane(w, h));
}

using InPlace = int32_t (*)(uint8_t *, ptrdiff_t, int32_t, int32_t, uint8_t *);
using Across = int32_t (*)(uint8_t *, ptrdiff_t, const uint8_t *, ptrdiff_t, int32_t, int32_t);

void CheckInPlace(InPlace filter, int (*rule)(const std::vector<int> &)) {
    EachSize([&](const Plane &plane) {
        const Bytes expected = Expected(plane, rule).bytes;
        Bytes scratch(FilterScratchBytes(plane.width));
        Plane down = plane;
        EXPECT_EQ(filter(down.bytes.data(), down.stride, down.width, down.height, scratch.data()), 0);
        EXPECT_EQ(down.bytes, expected);
        Plane up = plane;    // the rows from the last to the first
        EXPECT_EQ(filter(&up.At(0, up.height - 1), -up.stride, up.width, up.height, scratch.data()), 0);
        EXPECT_EQ(up.bytes, expected);
    });
}

void CheckAcross(Across filter, int (*rule)(const std::vector<int> &)) {
    EachSize([&](const Plane &plane) {
        const Plane expected = Expected(plane, rule);
        Plane source = plane;
        Plane target = plane;
        EXPECT_EQ(filter(target.bytes.data(), target.stride, source.bytes.data(), source.stride, plane.width, plane.height), 0);
        EXPECT_EQ(target.bytes, expected.bytes);
        EXPECT_EQ(source.bytes, plane.bytes);
        target = plane;
        const int32_t last = plane.height - 1;
        EXPECT_EQ(filter(&target.At(0, last), -target.stride, &source.At(0, last), -source.stride, plane.width, plane.height),
                  0);
        EXPECT_EQ(target.bytes, expected.bytes);
    });
}

TEST(FilterPlane, ErodesInPlaceFromTheUnchangedInput) { CheckInPlace(ErodePlane, Least); }
TEST(FilterPlane, DilatesInPlaceFromTheUnchangedInput) { CheckInPlace(DilatePlane, Most); }
TEST(FilterPlane, BoxWritesTheInteriorOnly) { CheckAcross(BoxPlane, BoxRule); }
TEST(FilterPlane, GaussWritesTheInteriorOnly) { CheckAcross(GaussPlane, GaussRule); }

TEST(FilterPlane, PlaneWithoutInteriorIsRefusedUntouched) {
    for (const auto &[w, h] : {std::pair{2, 9}, {9, 2}, {0, 0}, {-1, 9}, {9, -1}}) {
        Bytes plane(81, 5);
        const Bytes source(81, 200);
        Bytes scratch(18);
        EXPECT_EQ(ErodePlane(plane.data(), 9, w, h, scratch.data()), -6);
        EXPECT_EQ(DilatePlane(plane.data(), 9, w, h, scratch.data()), -6);
        EXPECT_EQ(BoxPlane(plane.data(), 9, source.data(), 9, w, h), -6);
        EXPECT_EQ(GaussPlane(plane.data(), 9, source.data(), 9, w, h), -6);
        EXPECT_EQ(plane, Bytes(81, 5));
    }
}

}    // namespace
}    // namespace zck
