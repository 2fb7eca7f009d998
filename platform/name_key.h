// The key of a name: what names are compared by.
#pragma once

#include "platform/text.h"

namespace zck {

namespace detail {

struct KeyLanes {
    uint64_t a = 0xA518C95D1B2E3917;
    uint64_t b = 0x9E3779B9A6C517EB;
    uint64_t c = 0x6A81C43A71D2E082;

    constexpr void Round(int right, int left, int last) noexcept {
        a = (a - b - c) ^ (c >> right);
        b = (b - c - a) ^ (a << left);
        c = (c - a - b) ^ (b >> last);
    }
    constexpr void Mix() noexcept {
        Round(43, 9, 8);
        Round(38, 23, 5);
        Round(35, 49, 11);
        Round(12, 18, 22);
    }
    constexpr void Add(int lane, uint64_t word) noexcept { (lane == 0 ? a : lane == 1 ? b : c) += word; }
};

}    // namespace detail

/// The 64-bit key of a name. Two names with one key are one name; nothing compares the texts.
///
/// Of each unit only the low byte counts, with bit 5 set: that folds the case of letters, and also "@" with "`" and "_" with
/// DEL. The last mix always runs, so a name of 24 characters is mixed twice.
constexpr uint64_t NameKey(TextView name) noexcept {
    detail::KeyLanes lanes;
    uint64_t word = 0;
    int bytes = 0;
    int lane = 0;
    for (const OLECHAR unit : name) {
        word |= ((uint64_t{unit} & 0xFF) | 0x20) << (8 * bytes);
        if (++bytes < 8) continue;
        lanes.Add(lane, word);
        word = 0;
        bytes = 0;
        if (++lane < 3) continue;
        lanes.Mix();
        lane = 0;
    }
    lanes.Add(lane, word);
    lanes.Mix();
    return lanes.c;
}

}    // namespace zck
