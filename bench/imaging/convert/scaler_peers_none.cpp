#include "bench/imaging/convert/scaler_peers.h"

namespace zck {

bench::FrameWork SwscaleWork(eZFCC, eZFCC, int32_t, int32_t, int32_t) { return {}; }
bench::FrameWork ZimgWork(eZFCC, eZFCC, int32_t, int32_t, int32_t) { return {}; }

}    // namespace zck
