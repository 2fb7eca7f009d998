// The comparison of a vector kernel with its reference, byte by byte, guard zones included.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "platform/processor.h"

namespace zck::test {

using Bytes = std::vector<uint8_t>;

enum class Fill { Noise, Near0, Near255 };

inline void FillBytes(Bytes &bytes, Fill fill, std::mt19937 &random) {
    for (uint8_t &b : bytes) {
        const auto noise = static_cast<uint8_t>(random() >> 8);
        b = fill == Fill::Noise ? noise : fill == Fill::Near0 ? noise % 6 : static_cast<uint8_t>(255 - noise % 6);
    }
}

// What a kernel reads and writes for a count. The inputs are one block of exactly that size, so that an address checker sees
// each byte read outside; a kernel of several inputs finds them one behind the other.
struct KernelShape {
    std::function<int64_t(int32_t count)> srcBytes;
    std::function<int64_t(int32_t count)> dstBytes;
    int32_t counts;          // from 0 on
    bool inPlace = false;    // compare with the target as source, too; sizes are equal then
};

// `call(table, dst, src, count)`. Both tables see the same bytes everywhere, and everything they leave is compared.
template <class Table, class Call>
void CheckKernel(const char *name, const Table &ref, const Table &vec, const KernelShape &shape, const Call &call) {
    constexpr int64_t kGuard = 64;
    const uint32_t seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << name << ", seed " << seed);
    std::mt19937 random(seed);
    for (const Fill fill : {Fill::Noise, Fill::Near0, Fill::Near255})
        for (int32_t count = -1; count < shape.counts; ++count)
            for (int32_t shift = 0; shift < 32; ++shift) {
                const int64_t srcBytes = count > 0 ? shape.srcBytes(count) : 0;
                const int64_t dstBytes = count > 0 ? shape.dstBytes(count) : 0;
                const int64_t at = kGuard + (shift * 7 + count + 1) % 32;
                Bytes src(static_cast<size_t>(shift + srcBytes));
                FillBytes(src, fill, random);
                Bytes expected(static_cast<size_t>(at + dstBytes + kGuard));
                FillBytes(expected, Fill::Noise, random);
                Bytes found = expected;
                const uint8_t *in = src.data() + shift;
                call(ref, expected.data() + at, in, count);
                call(vec, found.data() + at, in, count);
                ASSERT_EQ(expected, found) << "count " << count << " shift " << shift << " fill " << static_cast<int>(fill);
                if (!shape.inPlace || count <= 0) continue;
                std::copy(src.begin() + shift, src.end(), expected.begin() + at);
                found = expected;
                call(ref, expected.data() + at, expected.data() + at, count);
                call(vec, found.data() + at, found.data() + at, count);
                ASSERT_EQ(expected, found) << "in place, count " << count << " shift " << shift;
            }
}

}    // namespace zck::test
