// What texts mean, worked out the slow way on 8-bit text.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace conformance {

struct ModelNumber {
    bool negative = false;
    bool tooLarge = false;    // for 64 bits
    uint64_t magnitude = 0;
    size_t used = 0;
};
ModelNumber NumberInBase(const std::string &s, int base);    // base 0: as the prefix says
int32_t ModelInt(const std::string &s);
uint32_t ModelHex32(const std::string &s);
uint64_t ModelHex64(const std::string &s);
int64_t ModelInt64(const std::string &s);
bool ModelBool(const std::string &s);
double ModelReal(const std::string &s, size_t &used);
double ModelFloat(const std::string &s);
std::string ModelFloatText(double value, int precision);

std::string ModelColorText(uint32_t color);
uint32_t ModelColor(const std::string &s, uint32_t fallback);

std::array<uint8_t, 16> ModelIdentifier(const std::string &s);

struct ModelTime {
    int f[8] = {};    // year, month, day of the week, day, hour, minute, second, millisecond
};
ModelTime ModelTimeOf(const std::string &s, bool timeOnly);
std::string ModelTimeText(const ModelTime &time, bool timeOnly);

}    // namespace conformance
