// One frame laid over another, decision by decision over whole memories, against which the library's is compared. Nothing here
// is shared with the library but the public records.
#pragma once

#include <optional>

#include "tests/conformance/geometry_model.h"

namespace conformance {

constexpr HRESULT kNoPictureModel = static_cast<HRESULT>(0x800710D2);
constexpr HRESULT kBadRecordModel = static_cast<HRESULT>(0x80040200);
constexpr HRESULT kCannotMixModel = static_cast<HRESULT>(0x8004022A);

struct Laid {
    HRESULT hr = E_FAIL;
    Bytes target = {};    // all of the target's memory
    // Units by which rounding may differ where samples were made anew.
    int32_t tolerance = 0;
    // What stays on frames for the next time.
    std::optional<Still> converted = {};    // on the overlay
    std::optional<Still> mask = {};         // on the mask's frame, without one on the overlay
};

Laid FrameOverlayModel(const Still &target, const Still &over, int64_t x, int64_t y, double opacity);

// What is laid; null is missing. Stored masks have one byte a pixel, the top row first.
struct Layers {
    const Still *over = nullptr;
    const Still *overConverted = nullptr;
    const Still *overMask = nullptr;
    const Still *mask = nullptr;
    const Still *maskMask = nullptr;
};

// The picture's part of the wide operation. `field` is -1, 1 or 2.
Laid WideOverlayModel(const Still &target, const Layers &layers, int64_t x, int64_t y, double opacity, int32_t field);

// The mask that a picture stands for.
HRESULT MaskOfModel(const Still &picture, Still *mask);

// Whether a stored picture stands for a converted one.
bool SameStoredModel(const Z_VID_PROPS &stored, const Z_VID_PROPS &wanted);

// The record that an overlay is converted to.
Z_VID_PROPS ConvertedRecordModel(const Z_VID_PROPS &over, const Z_VID_PROPS &target, eZFCC fcc);

}    // namespace conformance
