// Keys in files, and the frames that the keyer makes with them: known bytes, the same on every system, at every processor
// level and in every run.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zchromakey/zchromakey.h"

namespace zck {

/// How the bytes of a frame were checked when its number was written down.
enum class Witness {
    Walk,    ///< the test compares them with the plain walk, each time
    None,    ///< the plain walk does not know such keys
};

struct SavedKey {
    const char *file;    ///< in tests/road/keys
    Witness witness;
    bool spillByPixel;     ///< sets `bColorCancel` to 2 behind the loading: no file can say so
    uint64_t hashes[3];    ///< of the frame, for each of `kThreads`
};

/// The pass over the seams gives other bytes than a single image.
inline constexpr int kThreads[3] = {1, 2, 5};

const std::vector<SavedKey> &SavedKeys();

/// Keys the picture with the file through the door, with a keyer of its own, and looks at every byte of the result.
void ExpectSavedFrame(const SavedKey &saved, int thread);

/// The picture that all of them key.
uint64_t PictureHash();

}    // namespace zck
