// Sound files, written and read byte by byte.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zchromakey/media_types.h"
#include "zchromakey/statuses.h"

namespace conformance {

using Bytes = std::vector<uint8_t>;

constexpr HRESULT kBadSound = static_cast<HRESULT>(0x80040248);

// What is in front of the samples of a new file.
std::string WavHead(const Z_AUD_PROPS &p, uint32_t dataBytes);
std::string WavFile(const Z_AUD_PROPS &p, const Bytes &sound);

struct WavSeen {
    Z_AUD_PROPS props = {};
    size_t dataAt = 0;
    size_t dataBytes = 0;
};
// False for what is no sound file that can be read.
bool WavRead(const std::string &file, WavSeen &seen);
// The file after sound was added to it. S_OK or a status that leaves the file.
HRESULT WavAppend(const Z_AUD_PROPS &p, const Bytes &sound, std::string &file);

}    // namespace conformance
