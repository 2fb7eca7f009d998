// Finds the screen in a picture for which no key was given.
#pragma once

#include <optional>
#include <string>

#include "hosts/zkey/composite.h"
#include "hosts/zkey/key_options.h"

namespace zkey {

struct ScreenGuess {
    ScreenKey key;
    std::string name;    ///< "green" or "blue"
};

/// Looks at the left, right and upper border of the picture, where a screen stands free most often. The dominant one of
/// green and blue wins; its median is the colour, and how far it spreads there gives the tolerance. Empty when hardly
/// any border pixel is clearly green or blue.
std::optional<ScreenGuess> GuessScreen(const ImageView &picture, eCK_Type type);

}    // namespace zkey
