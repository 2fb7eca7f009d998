// Finds the screen in a picture for which no key was given.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/zkey/composite.h"
#include "hosts/zkey/key_options.h"

namespace zkey {

struct ScreenGuess {
    std::vector<ScreenKey> parts;    ///< from dark to bright; one for an evenly lit screen
    std::string name;                ///< "green" or "blue"
    std::string doubt;               ///< why it may be no screen at all; empty when it looks like one
};

/// Looks at the left, right and upper border of the pictures of a clip, where a screen stands free most often; the dominant
/// one of green and blue wins. From there the screen is followed inwards. Where its light is uneven, or changes from picture
/// to picture, its colours are taken in up to three parts of brightness, each with its own middle and its own tolerance.
/// Empty when hardly any border pixel is clearly green or blue.
std::optional<ScreenGuess> GuessScreen(const std::vector<ImageView> &pictures, eCK_Type type);

}    // namespace zkey
