// The background of a key object, from its name.
#pragma once

#include "platform/com_ptr.h"
#include "platform/text.h"
#include "zchromakey/frame.h"

namespace zck {

/// A file, when the name has an extension; "checker"; or else a colour by name. Patterns and colours have the size of `like`,
/// in top-down `eZFCC_RGB32`; null stands for a picture of NTSC. `S_FALSE` and no frame for an empty name; `E_INVALIDARG` for a
/// text that is no colour; else the failure of the file or the frame.
HRESULT BackgroundByName(TextView name, const Z_VID_PROPS *like, ComPtr<IZFrame> *background);

}    // namespace zck
