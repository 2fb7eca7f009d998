// Random numbers from a seed, the same on every system: the library's distributions are not.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace conformance {

class Dice {
public:
    explicit Dice(uint32_t seed) : m_random(seed) {}

    int32_t operator()(int32_t least, int32_t most) {
        return least + static_cast<int32_t>(m_random() % static_cast<uint32_t>(most - least + 1));
    }

    std::vector<uint8_t> Noise(size_t n) {
        std::vector<uint8_t> bytes(n);
        for (uint8_t &b : bytes) b = static_cast<uint8_t>(m_random());
        return bytes;
    }

    // Half the time noise, else all bytes close to 0 or all close to 255, where rounding and limits show.
    std::vector<uint8_t> NoiseOrLimits(size_t n) {
        std::vector<uint8_t> bytes(n);
        const int32_t kind = (*this)(0, 3);
        for (uint8_t &b : bytes)
            b = static_cast<uint8_t>(kind == 0 ? m_random() % 4 : kind == 1 ? 255 - m_random() % 4 : m_random());
        return bytes;
    }

private:
    std::mt19937 m_random;
};

}    // namespace conformance
