// A frame through a keyer with an output thread.
#pragma once

#include "zchromakey/plugin.h"

namespace zck::test {

/// Hands a frame over until the one before comes out. The keyer waits a second for its output thread and then leaves the
/// frame, which on a busy machine is nobody's fault. `S_FALSE` if none comes.
inline HRESULT ReceiveKeyed(IZPlugin *plugin, IZFrame *frame, IZFrame **out) {
    HRESULT hr = S_FALSE;
    for (int tries = 0; hr == S_FALSE && tries < 60; ++tries) hr = plugin->OnMediaReceive(0, nullptr, frame, out);
    return hr;
}

}    // namespace zck::test
