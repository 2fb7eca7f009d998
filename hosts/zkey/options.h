// The command line of `zkey key`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/zkey/composite.h"
#include "hosts/zkey/frame_format.h"
#include "hosts/zkey/key_options.h"
#include "hosts/zkey/picture_shape.h"

namespace zkey {

enum class AlphaChoice { ByContainer, Straight, Premultiplied };

struct KeyCommand {
    std::string input;
    std::string output;
    std::string format;    ///< of the output; empty: by its name
    std::string codec;     ///< of the output; empty: by its format
    std::optional<RawSpec> raw;
    KeyOptions key;
    std::string keyFile;               ///< a saved key in place of `key`
    std::string saveKey;               ///< where to save the key
    std::string over;                  ///< colour, "checker" or a file; empty: no composite
    std::optional<Borders> garbage;    ///< borders that become transparent
    ShapeOptions shape;                ///< of the result
    bool matte = false;
    AlphaChoice alpha = AlphaChoice::ByContainer;
    bool exact = false;
    bool quiet = false;
    bool audio = true;
    int64_t frames = 0;    ///< stop after so many; 0: all
    std::vector<std::pair<std::string, std::string>> props;
    bool help = false;

    const std::string *Prop(std::string_view name) const;
};

/// The arguments after "key". Ends the program with a usage line when they make no sense.
KeyCommand ParseKeyCommand(const std::vector<std::string> &arguments);

}    // namespace zkey
