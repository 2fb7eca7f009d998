// WAV files of tests, made byte by byte.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

/// The plain form: 44 bytes and the samples. A `tag` of 1 is integers, 3 is float.
inline std::vector<uint8_t> WavBytes(uint32_t tag, uint32_t channels, uint32_t rate, uint32_t bits,
                                     const std::vector<uint8_t> &samples) {
    std::vector<uint8_t> out;
    const auto text = [&](const char *four) { out.insert(out.end(), four, four + 4); };
    const auto number = [&](uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
    };
    const auto size = static_cast<uint32_t>(samples.size());
    const uint32_t align = channels * bits / 8;
    text("RIFF");
    number(size + 36, 4);
    text("WAVE");
    text("fmt ");
    number(16, 4);
    number(tag, 2);
    number(channels, 2);
    number(rate, 4);
    number(rate * align, 4);
    number(align, 2);
    number(bits, 2);
    text("data");
    number(size, 4);
    out.insert(out.end(), samples.begin(), samples.end());
    return out;
}

template <class T>
std::vector<uint8_t> BytesOf(const std::vector<T> &values) {
    std::vector<uint8_t> out(values.size() * sizeof(T));
    if (!out.empty()) std::memcpy(out.data(), values.data(), out.size());
    return out;
}
