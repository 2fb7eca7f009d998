// The conversion of frames, decision by decision over whole frames, against which the library's is compared. Nothing here is
// shared with the library but the public records.
#pragma once

#include <string>

#include "tests/conformance/geometry_model.h"

namespace conformance {

// What a list of options can say; empty is missing.
struct ConvertWishes {
    std::string scale, quality, field, mirror, crop, rotate;
    std::string Text() const;
};

struct Conversion {
    HRESULT hr = E_FAIL;
    bool known = true;     // false: the model does not know the pixels
    bool clone = false;    // no pixel is converted
    int32_t tolerance = 0;
    Still result = {};
};

// Either picture may be missing.
Conversion FramesConvertModel(const Still *first, const Still *second, const Z_VID_PROPS &target, const ConvertWishes &wishes);

}    // namespace conformance
