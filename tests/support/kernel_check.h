// The comparison of a vector kernel with its reference, byte by byte, guard zones included. One checker for all rooms.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <random>
#include <type_traits>
#include <vector>

#include "platform/kernel_table.h"

namespace zck::test {

using Bytes = std::vector<uint8_t>;
using Sources = std::vector<const uint8_t *>;

/// The seed of all checks of this run: that of `--gtest_random_seed`, by which a failure is replayed, or a fresh one.
inline uint32_t Seed() {
    static const uint32_t seed = GTEST_FLAG_GET(random_seed) != 0 ? static_cast<uint32_t>(GTEST_FLAG_GET(random_seed))
                                                                  : std::random_device{}() % 99999 + 1;
    return seed;
}

inline testing::Message Replay() { return testing::Message() << "replay with --gtest_random_seed=" << Seed(); }

/// The family's tables on this processor: the reference, and those of the levels that it has. A level above the last one with
/// versions of its own repeats that table.
template <class Table>
std::vector<Table> TablesOf(const KernelFamily<Table> &family) {
    std::vector<Table> tables = {family.Make(KernelLevel::Reference)};
    if (CpuHasAvx2()) tables.push_back(family.Make(KernelLevel::Avx2));
    if (CpuHasAvx512() && family.avx512 != nullptr) tables.push_back(family.Make(KernelLevel::Avx512));
    return tables;
}

/// Every entry is filled and differs from the reference's. `Table` holds function pointers and nothing else.
template <class Table>
void ExpectAllEntriesDiffer(const Table &ref, const Table &vec) {
    constexpr size_t kEntries = sizeof(Table) / sizeof(void (*)());
    void *one[kEntries];
    void *two[kEntries];
    std::memcpy(one, &ref, sizeof ref);
    std::memcpy(two, &vec, sizeof vec);
    for (size_t i = 0; i < kEntries; ++i) {
        EXPECT_NE(one[i], nullptr) << "entry " << i;
        EXPECT_NE(two[i], nullptr) << "entry " << i;
        EXPECT_NE(one[i], two[i]) << "entry " << i;
    }
}

enum class Fill { Noise, Near0, Near255, Ends, Runs };
constexpr Fill kFills[] = {Fill::Noise, Fill::Near0, Fill::Near255, Fill::Ends, Fill::Runs};

inline void FillBytes(Bytes &bytes, Fill fill, std::mt19937 &random) {
    uint32_t left = 0;
    uint32_t kind = 0;
    for (uint8_t &b : bytes) {
        const auto noise = static_cast<uint8_t>(random() >> 8);
        switch (fill) {
            case Fill::Near0:
                b = noise % 6;
                break;
            case Fill::Near255:
                b = static_cast<uint8_t>(255 - noise % 6);
                break;
            case Fill::Ends:
                b = noise % 2 == 0 ? 0 : 255;
                break;
            case Fill::Runs:    // runs of 0, of 255 and of noise: vectors that are alike in all lanes
                if (left == 0) {
                    left = static_cast<uint32_t>(random() % 80 + 1);
                    kind = static_cast<uint32_t>(random() % 4);
                }
                --left;
                b = kind == 0 ? 0 : kind == 1 ? 255 : noise;
                break;
            default:
                b = noise;
        }
    }
}

/// How many bytes a kernel reads or writes for a count.
using ByteCount = std::function<int64_t(int32_t count)>;

inline ByteCount Times(int64_t n) {
    return [n](int32_t count) { return n * count; };
}

/// What a kernel reads and writes. Each source is a block of exactly its size at a misalignment of its own, so that an address
/// checker sees each byte read behind it.
struct KernelShape {
    ByteCount src;
    ByteCount dst;
    int32_t counts;                        ///< -1 to `counts` - 1 are checked
    bool inPlace = false;                  ///< compare with the target as the first source, too; the sizes are equal then
    std::vector<ByteCount> others = {};    ///< sources after the first
    int64_t over = 0;                      ///< bytes behind the target that the kernel may write
    int64_t margin = 0;                    ///< bytes that it reads before and behind each source
};

/// One case of a check: the buffers of both calls, and the comparison.
template <class Table, class Call>
class KernelCase {
public:
    KernelCase(const KernelShape &shape, Fill fill, int32_t count, int32_t shift, std::mt19937 &random) : m_count(count) {
        const auto bytes = [count](const ByteCount &of) { return count > 0 ? of(count) : 0; };
        m_at = kGuard + (shift * 7 + count + 1) % 32;
        m_end = m_at + bytes(shape.dst) + (count > 0 ? shape.over : 0);
        m_before.resize(static_cast<size_t>(m_at + bytes(shape.dst) + kGuard));
        FillBytes(m_before, fill, random);
        AddSource(bytes(shape.src), shift, shape.margin, fill, random);
        for (size_t i = 0; i < shape.others.size(); ++i)
            AddSource(bytes(shape.others[i]), (shift * 11 + count + 5 * static_cast<int32_t>(i)) & 31, shape.margin, fill,
                      random);
    }

    testing::AssertionResult Same(const Table &ref, const Table &vec, const Call &call) {
        return Compare(ref, vec, call, m_before, false);
    }

    testing::AssertionResult SameInPlace(const Table &ref, const Table &vec, const Call &call) {
        Bytes start = m_before;
        std::copy(m_pointers[0], m_pointers[0] + (m_end - m_at), start.begin() + m_at);
        return Compare(ref, vec, call, start, true);
    }

private:
    static constexpr int64_t kGuard = 64;

    void AddSource(int64_t bytes, int32_t shift, int64_t margin, Fill fill, std::mt19937 &random) {
        m_sources.emplace_back(static_cast<size_t>(shift + bytes + 2 * margin));
        FillBytes(m_sources.back(), fill, random);
        m_pointers.push_back(m_sources.back().data() + shift + margin);
    }

    void Run(const Table &table, const Call &call, Bytes &dst, bool inPlace) {
        uint8_t *const to = dst.data() + m_at;
        Sources sources = m_pointers;
        if (inPlace) sources[0] = to;
        if constexpr (std::is_invocable_v<Call, const Table &, uint8_t *, const uint8_t *, int32_t>)
            call(table, to, sources[0], m_count);
        else
            call(table, to, sources, m_count);
    }

    testing::AssertionResult Compare(const Table &ref, const Table &vec, const Call &call, const Bytes &start, bool inPlace) {
        const std::vector<Bytes> sources = m_sources;
        Bytes expected = start;
        Bytes found = start;
        Run(ref, call, expected, inPlace);
        Run(vec, call, found, inPlace);
        for (size_t i = 0; i < start.size(); ++i) {
            const auto at = static_cast<int64_t>(i);
            const bool guard = at < m_at || at >= m_end;
            if (expected[i] != found[i])
                return testing::AssertionFailure()
                       << "byte " << at - m_at << " is " << int{found[i]} << ", the reference has " << int{expected[i]};
            if (guard && found[i] != start[i])
                return testing::AssertionFailure() << "both write byte " << at - m_at << " outside of the target";
        }
        if (m_sources != sources) return testing::AssertionFailure() << "a source was written";
        return testing::AssertionSuccess();
    }

    int32_t m_count;
    int64_t m_at = 0;
    int64_t m_end = 0;
    Bytes m_before;
    std::vector<Bytes> m_sources;
    Sources m_pointers;
};

/// `call(table, dst, src, count)`, or with all `Sources` in place of `src`. Both tables see the same bytes everywhere, and
/// everything that they leave is compared. Calls come in pairs, reference first.
template <class Table, class Call>
void CheckKernel(const char *name, const Table &ref, const Table &vec, const KernelShape &shape, const Call &call) {
    std::mt19937 random(Seed());
    for (const Fill fill : kFills)
        for (int32_t count = -1; count < shape.counts; ++count)
            for (int32_t shift = 0; shift < 32; ++shift) {
                KernelCase<Table, Call> one(shape, fill, count, shift, random);
                ASSERT_TRUE(one.Same(ref, vec, call)) << name << ", count " << count << ", shift " << shift << ", fill "
                                                      << static_cast<int>(fill) << ", " << Replay();
                if (!shape.inPlace || count <= 0) continue;
                ASSERT_TRUE(one.SameInPlace(ref, vec, call)) << name << " in place, count " << count << ", shift " << shift
                                                             << ", fill " << static_cast<int>(fill) << ", " << Replay();
            }
}

}    // namespace zck::test
