// A second, dull walk through the arithmetic on media records, against which the library's is compared. Nothing here is
// shared with the library but the public records.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zchromakey/media_types.h"

namespace conformance {

constexpr eZFCC Fcc(uint32_t code) { return static_cast<eZFCC>(code); }

// Every code that anything is known about, and a few that nobody knows.
const std::vector<eZFCC> &AllCodes();

struct FormatRow {
    int32_t width;
    int32_t height;
    double rate;
    int32_t scan;
    int32_t aspectX;
    int32_t aspectY;
};

// The row of a base number; zeros outside 1 to 33.
FormatRow FormatOf(int32_t format);
int32_t MarginOf(int32_t format);

bool Rgb(eZFCC fcc);
bool Planar(eZFCC fcc);
bool Packed(eZFCC fcc);
int32_t Bits(eZFCC fcc);
int64_t Row(eZFCC fcc, int64_t width);
int64_t Pixels(eZFCC fcc, int64_t rowBytes);

Z_VID_PROPS FromFormat(int32_t format, eZFCC fcc);
int32_t Found(const Z_VID_PROPS *props);
int32_t Update(Z_VID_PROPS *props, bool trust);
bool Valid(const Z_VID_PROPS *props);
int32_t BufferSize(const Z_VID_PROPS *props);
int32_t OrderSign(const Z_VID_PROPS *props);
double Aspect(const Z_VID_PROPS *props);

// Bytes from the first to the last byte of pixels.
int64_t Need(const Z_VID_PROPS &props);

// Every field in words, for comparison and for messages.
std::string Words(const Z_VID_PROPS &props);

// A record of a custom picture with regular rows.
Z_VID_PROPS Picture(eZFCC fcc, int32_t width, int32_t height);

}    // namespace conformance
