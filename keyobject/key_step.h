// `KeyStep`: one complete state of a key, and the history of such states.
#pragma once

#include <deque>

#include "keying/key/key.h"
#include "keyobject/key_range.h"

namespace zck {

/// The colour space of a working image, and of the key that is made on it.
enum class KeySpace : int32_t { Rgb = 0, Hls = 1, Yuv = 2 };

/// A flat value of about 3 KB, copied whole.
struct KeyStep {
    CHROMA_KEY_RAW key = {};
    CK_ADJUST adjust = AdjustDefaults();
    KeyRangeSet addRanges;        ///< keyed out
    KeyRangeSet excludeRanges;    ///< protected from keying
};

/// Both range sets from the key. Each set takes a slot for every entry of the key, so that both end with as many ranges as
/// the key has entries; the slots of entries of the other kind keep what they held.
void StepLoadRanges(KeyStep &step);

/// The key's entries from the range sets, the exclude ranges behind the others as far as the 16 entries reach, and the
/// adjustment over them. The type of the key stays as it is.
void StepRebuild(KeyStep &step);
/// The same with the type of a space.
void StepRebuild(KeyStep &step, KeySpace space);

/// The states before the edits, oldest first, and a position for the walk through them. Not locked.
class KeyHistory {
public:
    static constexpr size_t kLimit = 512;

    /// Saves the present state before an edit and ends the walk: the entries from its position on go. Nothing changes when
    /// memory is short (`std::bad_alloc`).
    void Save(const KeyStep &present);

    /// Moves one position back; from the head to the newest entry but one, or to the only one. Null with an empty history.
    const KeyStep *Back();

    /// Moves one position forward, but not past the newest entry. Null at the head.
    const KeyStep *Forward();

private:
    const KeyStep *MoveTo(int32_t position);

    std::deque<KeyStep> m_steps;
    int32_t m_position = -1;    // -1: at the head
};

}    // namespace zck
