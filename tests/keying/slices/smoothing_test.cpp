// Both sequences of the edge smoothing against a plain walk over planes with indices, which shares nothing with the engine.
#include <gtest/gtest.h>

#include <array>

#include "keying/slices/slices.h"
#include "tests/keying/pipeline/image_fixture.h"

namespace zck {
namespace {

using Plane = std::vector<uint8_t>;

struct Walk {
    int32_t w;
    int32_t h;

    size_t At(int32_t x, int32_t y) const { return static_cast<size_t>(y * w + x); }
    template <class Rule>
    void Interior(Plane &dst, const Plane &src, Rule rule) const {
        for (int32_t y = 1; y < h - 1; ++y) {
            for (int32_t x = 1; x < w - 1; ++x) {
                std::array<int32_t, 9> n;
                for (int32_t i = 0; i < 9; ++i) n[static_cast<size_t>(i)] = src[At(x + i % 3 - 1, y + i / 3 - 1)];
                dst[At(x, y)] = static_cast<uint8_t>(rule(n));
            }
        }
    }
    void Erode(Plane &plane) const {
        const Plane before = plane;
        Interior(plane, before, [](const auto &n) { return *std::min_element(n.begin(), n.end()); });
    }
    void Box(Plane &dst, const Plane &src) const {
        Interior(dst, src, [](const auto &n) {
            int32_t s = 0;
            for (const int32_t v : n) s += v;
            return ((s + 5) * 455) >> 12;
        });
    }
    void Gauss(Plane &dst, const Plane &src) const {
        Interior(dst, src, [](const auto &n) {
            const int32_t s = n[0] + n[2] + n[6] + n[8] + 2 * (n[1] + n[3] + n[5] + n[7]) + 4 * n[4];
            return (s + 7 + ((s >> 4) & 1)) >> 4;
        });
    }
    void Min(Plane &dst, const Plane &src) const {
        for (int32_t y = 0; y < h; ++y) {
            for (int32_t x = 0; x < w / 16 * 16; ++x) dst[At(x, y)] = std::min(dst[At(x, y)], src[At(x, y)]);
        }
    }
    template <class Value>
    void Border(Plane &dst, Value value) const {
        for (int32_t y = 0; y < h; ++y) {
            for (int32_t x = 0; x < w; ++x) {
                if (x == 0 || y == 0 || x == w - 1 || y == h - 1) dst[At(x, y)] = value(At(x, y));
            }
        }
    }

    Plane Image(Plane first, int32_t edges) const {
        Plane second(first.size());
        if (edges > 1) Border(second, [](size_t) { return uint8_t{255}; });
        Plane *a = &first;
        Plane *b = &second;
        for (int32_t i = 1; i < edges; ++i) {
            Erode(*a);
            Box(*b, *a);
            Min(*b, first);
            std::swap(a, b);
            Border(*b, [&](size_t at) { return first[at]; });
        }
        Plane result = first;
        const Plane last = *a;
        Gauss(result, last);
        return result;
    }

    Plane Seam(const Plane &plane, int32_t edges) const {
        Plane a = plane;
        Plane b(plane.size());
        for (int32_t i = 1; i < edges; ++i) {
            Erode(a);
            Box(b, a);
            Min(b, plane);
            Border(b, [&](size_t at) { return plane[at]; });
            std::swap(a, b);
        }
        Plane result = plane;
        Gauss(result, a);
        return result;
    }
};

TEST(Smoothing, FollowsThePlainWalk) {
    for (const int32_t n : {1, 2}) {
        CSliceThreads pool;
        pool.SetThreadCount(n);
        for (const auto &[w, h] : {std::pair{3, 4}, {8, 6}, {15, 10}, {16, 12}, {24, 30}, {31, 8}, {32, 64}, {40, 100}}) {
            const Z_VID_PROPS props = test::Props(w, h);
            test::Guarded pixels(test::PixelBytes(props));
            test::FillScene(pixels.Data(), pixels.Size(), static_cast<uint32_t>(w));
            const auto scene = pixels.Bytes();
            const auto alphaOf = [&](int32_t edges) {
                test::Guarded alpha(test::AlphaBytes(props));
                std::copy(scene.begin(), scene.end(), pixels.Data());
                CHROMA_KEY_RAW key = test::GreenKey();
                key.nEdgesSmooth = edges;
                EXPECT_EQ(S_OK, pool.Dispatch(pixels.Data(), alpha.Data(), &props, &key, WriteAlpha::Yes, ReturnEarly::No));
                return alpha.Bytes();
            };
            const Walk walk{w, h};
            const Plane keyed = alphaOf(0);
            for (int32_t edges = 1; edges <= 7; ++edges) {
                const Plane expected = n == 1 ? walk.Image(keyed, edges) : walk.Seam(keyed, edges);
                EXPECT_TRUE(expected == alphaOf(edges)) << n << " slices, " << w << "x" << h << ", rounds " << edges;
            }
        }
    }
}

// The planes come to rest, and rounds without end are over with them. That they do not end is seen by the time-out.
TEST(Smoothing, rounds_without_end_give_the_bytes_of_a_plane_at_rest) {
    for (const int32_t n : {1, 2}) {
        CSliceThreads pool;
        pool.SetThreadCount(n);
        for (const auto &[w, h] : {std::pair{3, 4}, {16, 12}, {31, 8}, {24, 30}, {40, 50}}) {
            const Z_VID_PROPS props = test::Props(w, h);
            test::Guarded pixels(test::PixelBytes(props));
            test::FillScene(pixels.Data(), pixels.Size(), static_cast<uint32_t>(w));
            const auto scene = pixels.Bytes();
            const auto alphaOf = [&](int32_t edges) {
                test::Guarded alpha(test::AlphaBytes(props));
                std::copy(scene.begin(), scene.end(), pixels.Data());
                CHROMA_KEY_RAW key = test::GreenKey();
                key.nEdgesSmooth = edges;
                EXPECT_EQ(S_OK, pool.Dispatch(pixels.Data(), alpha.Data(), &props, &key, WriteAlpha::Yes, ReturnEarly::No));
                return alpha.Bytes();
            };
            const Walk walk{w, h};
            const Plane keyed = alphaOf(0);
            const auto walked = [&](int32_t edges) { return n == 1 ? walk.Image(keyed, edges) : walk.Seam(keyed, edges); };
            for (const int32_t rest : {200, 201}) {
                const Plane expected = walked(rest);
                ASSERT_TRUE(expected == walked(rest + 2)) << "not at rest: " << n << " slices, " << w << "x" << h;
                for (const int32_t edges : {10000000 + rest, 0x7FFFFF00 + rest % 2}) {
                    EXPECT_TRUE(expected == alphaOf(edges)) << n << " slices, " << w << "x" << h << ", rounds " << edges;
                }
            }
        }
    }
}

}    // namespace
}    // namespace zck
