#include "keying/pipeline/to_rgb32.h"

#include "platform/status.h"

namespace zck {

HRESULT ToRgb32(const uint8_t *, int64_t, uint8_t *, int64_t, const Z_VID_PROPS &, int64_t) {
    // No conversion is linked in yet: formats other than 32-bit RGB are refused.
    return kVfwEInvalidSubtype;
}

}    // namespace zck
