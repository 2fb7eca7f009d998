#include "tests/conformance/wav_model.h"

#include <cstdlib>

namespace conformance {
namespace {

std::string Number(uint64_t value, int bytes) {
    std::string s;
    for (int i = 0; i < bytes; ++i) s += static_cast<char>(value >> (8 * i));
    return s;
}

uint32_t NumberAt(const std::string &s, size_t at, size_t bytes) {
    uint32_t value = 0;
    for (size_t i = 0; i < bytes; ++i) value |= static_cast<uint32_t>(static_cast<uint8_t>(s[at + i])) << (8 * i);
    return value;
}

std::string SubFormat(bool real) {
    return Number(real ? 3 : 1, 4) + Number(0, 2) + Number(0x10, 2) + std::string("\x80\x00\x00\xAA\x00\x38\x9B\x71", 8);
}

// From 1 to 0x7FFFFFFF.
bool Positive(uint32_t value) { return value - 1 < 0x7FFFFFFFU; }

bool ReadFormat(const std::string &block, Z_AUD_PROPS &p) {
    if (block.size() < 16) return false;
    uint32_t tag = NumberAt(block, 0, 2);
    const uint32_t channels = NumberAt(block, 2, 2), rate = NumberAt(block, 4, 4);
    const uint32_t align = NumberAt(block, 12, 2), field = NumberAt(block, 14, 2);
    uint32_t valid = field;
    if (tag == 0xFFFE) {
        if (block.size() < 40 || NumberAt(block, 16, 2) < 22) return false;
        valid = NumberAt(block, 18, 2);
        const std::string id = block.substr(24, 16);
        tag = id == SubFormat(true) ? 3 : id == SubFormat(false) ? 1 : 0;
    }
    if ((tag != 1 && tag != 3) || !Positive(channels) || !Positive(rate)) return false;
    if (align == 0 || align % channels != 0) return false;
    const uint32_t width = align / channels;
    const auto fits = [width](uint32_t bits) { return bits != 0 && (bits + 7) / 8 == width; };
    if (!fits(field) && !fits(valid)) return false;
    const auto bits = static_cast<int32_t>(fits(field) ? field : valid);
    p = {static_cast<int32_t>(channels), static_cast<int32_t>(rate), tag == 3 ? -bits : bits, 0};
    return true;
}

}    // namespace

std::string WavHead(const Z_AUD_PROPS &p, uint32_t dataBytes) {
    const auto bits = static_cast<uint64_t>(std::llabs(p.nBitsPerSample));
    const auto channels = static_cast<uint64_t>(p.nChannels), rate = static_cast<uint64_t>(p.nSamplesPerSec);
    const uint64_t width = (bits + 7) / 8 * 8, align = channels * width / 8;
    const bool brief = channels <= 2 && bits <= 16, real = p.nBitsPerSample < 1;
    std::string block = Number(brief ? (real ? 3U : 1U) : 0xFFFEU, 2) + Number(channels, 2) + Number(rate, 4) +
                        Number(rate * align, 4) + Number(align, 2) + Number(width == 24 ? 32 : width, 2);
    if (!brief)
        block +=
            Number(22, 2) + Number(bits, 2) + Number(channels < 32 ? (1ULL << channels) - 1 : 0xFFFFFFFFU, 4) + SubFormat(real);
    return "RIFF" + Number(dataBytes + (brief ? 36U : 60U), 4) + "WAVEfmt " + Number(block.size(), 4) + block + "data" +
           Number(dataBytes, 4);
}

std::string WavFile(const Z_AUD_PROPS &p, const Bytes &sound) {
    return WavHead(p, static_cast<uint32_t>(sound.size())) + std::string(sound.begin(), sound.end());
}

bool WavRead(const std::string &file, WavSeen &seen) {
    if (file.size() < 12 || file.compare(0, 4, "RIFF") != 0 || file.compare(8, 4, "WAVE") != 0) return false;
    bool format = false;
    uint64_t at = 12;
    for (int chunk = 0; chunk < 65536 && at + 8 <= file.size(); ++chunk) {
        const std::string id = file.substr(at, 4);
        const uint64_t size = NumberAt(file, at + 4, 4);
        at += 8;
        if (id == "data") {
            if (!format) return false;
            const uint64_t left = file.size() - at;
            seen.dataAt = at;
            seen.dataBytes = size == 0 || size == 0xFFFFFFFF || size > left ? left : size;
            return true;
        }
        if (id == "fmt " && !format) {
            if (size > file.size() - at || !ReadFormat(file.substr(at, size), seen.props)) return false;
            format = true;
        }
        at += size + size % 2;
    }
    return false;
}

HRESULT WavAppend(const Z_AUD_PROPS &p, const Bytes &sound, std::string &file) {
    const int64_t width = (std::llabs(p.nBitsPerSample) + 7) / 8;
    if (p.nChannels > 65535 || p.nChannels * width > 65535) return kBadSound;
    WavSeen seen;
    const bool joins = WavRead(file, seen) && seen.props.nChannels == p.nChannels &&
                       seen.props.nSamplesPerSec == p.nSamplesPerSec && seen.props.nBitsPerSample == p.nBitsPerSample;
    if (!joins) {
        file = WavFile(p, sound);
        return S_OK;
    }
    file.resize(seen.dataAt + seen.dataBytes);
    file.append(sound.begin(), sound.end());
    const auto data = static_cast<uint32_t>(file.size() - seen.dataAt);
    const std::string head = WavHead(p, data);
    if (head.size() == seen.dataAt) {
        file.replace(0, head.size(), head);
    } else {
        file.replace(4, 4, Number(file.size() - 8, 4));
        file.replace(seen.dataAt - 4, 4, Number(data, 4));
    }
    return S_OK;
}

}    // namespace conformance
