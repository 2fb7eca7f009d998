// Bytes of a fuzzer as text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "platform/text.h"

namespace zck::fuzz {

/// Two bytes a unit, low byte first; a last odd byte is dropped. Not well-formed UTF-16 in general.
inline Text TextOfUnits(const uint8_t *data, size_t size) {
    Text text;
    for (size_t i = 0; i + 1 < size; i += 2) text.push_back(static_cast<OLECHAR>(data[i] | data[i + 1] << 8));
    return text;
}

/// Every byte a character of its own: what most of the syntax is made of.
inline Text TextOfBytes(const uint8_t *data, size_t size) { return Text(data, data + size); }

/// Ends the process where `condition` does not hold, in every build.
inline void Require(bool condition, const char *what) {
    if (condition) return;
    std::fprintf(stderr, "violated: %s\n", what);
    std::abort();
}

}    // namespace zck::fuzz
