// The whole sound of a file in one frame.
#pragma once

#include <string>

#include "hosts/zkey/frame_sound.h"

namespace zkey {

/// A frame with the sound: of a WAV file by the library, of another file by FFmpeg's libraries where they are there. Ends the
/// program with a line that names the file when that fails.
Ref<IZFrame> ReadSoundFile(const std::string &path);

/// The kind that needs FFmpeg's libraries. A build without them refuses with a line that says so.
Sound DecodeSound(const std::string &path);

}    // namespace zkey
