// A keyer whose output thread can be waited for.
#pragma once

#include "keying/plugin/chroma_key.h"

namespace zck::test {

/// A call of `OnMediaReceive` waits for the output thread for a second, then it leaves the frame. On a busy machine that
/// second may pass with no fault of anybody, so tests wait before the call for as long as it takes.
class AwaitedKeyer : public CCoZChromaKey {
public:
    /// Waits until the output thread has done its frame. The next one will be taken at once.
    static void AwaitOutput(IZPlugin *plugin) { static_cast<AwaitedKeyer *>(plugin)->m_outputDone.Wait(kInfinite); }
};

}    // namespace zck::test
