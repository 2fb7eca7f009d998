// Dull geometry of whole pictures: parts and fields of a picture where it lies, quarter turns, mirrors, two pictures woven into
// one. Nothing here is shared with the library but the public records.
#pragma once

#include <algorithm>
#include <cstdint>

#include "tests/conformance/convert_model.h"

namespace conformance {

constexpr HRESULT kNoRouteModel = static_cast<HRESULT>(0x80040201);
constexpr HRESULT kBadMediaModel = static_cast<HRESULT>(0x80040248);

// A frame's record and all its bytes.
struct Still {
    Z_VID_PROPS props = {};
    Bytes memory = {};
};

// A picture inside a memory.
struct Spot {
    Bytes *memory;
    int64_t at;    // of the first byte
    Z_VID_PROPS props;

    int64_t Height() const { return props.nHeight < 0 ? -int64_t{props.nHeight} : props.nHeight; }
    bool BottomUp() const;
    Bytes Rest() const { return Bytes(memory->begin() + std::min(at, static_cast<int64_t>(memory->size())), memory->end()); }
};

// The completed record; one line with row bytes stays one line.
Z_VID_PROPS UpdatedModel(Z_VID_PROPS props);

// The part of a picture; planar pictures stay whole. A bottom-up part begins one row too low in the memory.
Spot PartOfModel(Spot spot, const tagRECT &rect);

// Every other row, as a picture of its own; 0 is the first in time.
Spot FieldOfModel(Spot spot, int32_t f);

// A quarter turn in the order of the rows in memory. `rounded` says that samples were made anew.
HRESULT TurnModel(const Still &still, bool left, Still *turned, bool *rounded);

// `axis`: 1 columns, 2 rows, 3 both change their order.
HRESULT MirrorModel(Still &still, int32_t axis);

// Even rows of one picture and odd rows of another of the same record.
HRESULT WeaveModel(const Still &first, const Still &second, eZInterlace scan, Still *woven);

}    // namespace conformance
