// What is short when the library has no memory for a frame. One implementation per system, chosen by the build.
#pragma once

#include <cstdint>
#include <string>

namespace zkey {

/// Names what is short, and what helps, for a frame of this many bytes. Looked up when it is called: what was short a moment
/// ago may be there again.
std::string WhyNoRoom(int64_t bytes);

}    // namespace zkey
