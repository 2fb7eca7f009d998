// Pictures that go to the program in many formats, and how their results are judged.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/hosts/zkey/program.h"

/// Standard definition by its size, so that a clip without tags is BT.601.
constexpr int kFormatWidth = 352;
constexpr int kFormatHeight = 288;

struct FormatPicture {
    std::vector<uint8_t> pixels;    ///< blue, green, red, 255
    std::vector<uint8_t> alpha;     ///< the known matte
};

/// The green-screen scene; interlaced, its fields are two moments of it.
FormatPicture FormatScene(bool interlaced);
/// Flat patches of skin, screens, primaries and greys.
FormatPicture FormatPatches();

/// Options that take out the scene's screen.
extern const char *const kFormatKey;

/// Runs the program on an input with its options; gives blue, green, red, alpha. Fails the test when it does.
std::vector<uint8_t> RunToRaw(const Scratch &scratch, const std::string &input, const std::string &options);

/// Mean distance of the alpha bytes of a result from a matte.
double MatteError(const std::vector<uint8_t> &keyed, const std::vector<uint8_t> &alpha);
/// The same of two results.
double MatteDistance(const std::vector<uint8_t> &a, const std::vector<uint8_t> &b);
/// Mean distance of the colour bytes.
double ColourDistance(const std::vector<uint8_t> &a, const std::vector<uint8_t> &b);
/// Largest distance of a colour byte inside the patches, away from their edges.
int WorstInPatches(const std::vector<uint8_t> &a, const std::vector<uint8_t> &b);
