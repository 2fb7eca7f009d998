// The door of the frame factory.
#pragma once

#include "zchromakey/com.h"

namespace zck {

/// Makes a frame factory with a pool of its own: `IZFrames`, `IZFrames_I`, `IZFFactory`, `IZFrameShell`. It lives until the
/// last of its frames is released. `E_POINTER` for a null output, `E_NOINTERFACE` for an interface that it does not have.
HRESULT FrameFactoryCreate(REFIID riid, void **ppv);

}    // namespace zck
