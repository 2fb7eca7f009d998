// One picture of a clip, as a frame to look at or to edit a key on.
#pragma once

#include <optional>
#include <string>

#include "hosts/zkey/media.h"
#include "hosts/zkey/plugin_door.h"

namespace zkey {

/// Which picture of which input.
struct StillChoice {
    std::string input;
    std::optional<RawSpec> raw;
    std::optional<double> at;        ///< seconds
    std::optional<int64_t> frame;    ///< counted from 0
};

struct Still {
    Ref<IZFrame> frame;    ///< with room at the right and at the bottom
    SourceInfo info;
};

/// The option `name` with its value: --at, --frame or --raw. False for any other.
bool TakeStillOption(const std::string &name, const std::string &value, StillChoice &choice);

/// Ends the program with a line when there is no such picture.
Still ReadStill(Keyer &keyer, const StillChoice &choice);

/// Writes one finished picture; the kind of file is that of the name. `background` is read for `Finish::Over` only.
void WriteStill(Keyer &keyer, const std::string &path, const ImageView &keyed, Finish finish, const std::string &background,
                const SourceInfo &info);

}    // namespace zkey
