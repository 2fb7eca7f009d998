#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frames/audio/wav_file.h"
#include "frames/media/audio_props.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr uint32_t kTagInteger = 1;
constexpr uint32_t kTagFloat = 3;
constexpr uint32_t kTagExtensible = 0xFFFE;
constexpr uint32_t kExtra = 22;    // bytes of the extensible form behind their own count
constexpr int kChunksMax = 65536;

// The identifiers of both sub-formats differ in the first two bytes, which are the plain tag.
constexpr uint8_t kSubFormatRest[14] = {0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};

uint32_t Get16(const uint8_t *p) { return p[0] | uint32_t{p[1]} << 8; }
uint32_t Get32(const uint8_t *p) { return Get16(p) | Get16(p + 2) << 16; }
bool IsTag(const uint8_t *p, const char *tag) { return std::memcmp(p, tag, 4) == 0; }

class Writer {
public:
    explicit Writer(WavHeader &header) : m_header(header) { m_header = {}; }
    void Tag(const char *tag) { Bytes(tag, 4); }
    void Put16(uint32_t value) {
        const uint8_t bytes[2] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)};
        Bytes(bytes, 2);
    }
    void Put32(uint32_t value) {
        Put16(value);
        Put16(value >> 16);
    }
    void Bytes(const void *bytes, uint32_t n) {
        std::memcpy(m_header.bytes + m_header.size, bytes, n);
        m_header.size += n;
    }

private:
    WavHeader &m_header;
};

int32_t BitsThatFit(uint32_t bits, int64_t width) {
    return bits != 0 && AudioSampleBytes(static_cast<int32_t>(bits)) == width ? static_cast<int32_t>(bits) : 0;
}

// A format block of `size` bytes, at least 16 and of no more than 40.
bool FormatRead(const uint8_t *p, uint32_t size, Z_AUD_PROPS &props) {
    uint32_t tag = Get16(p);
    const uint32_t channels = Get16(p + 2);
    const uint32_t rate = Get32(p + 4);
    const uint32_t align = Get16(p + 12);
    if (channels == 0 || rate == 0 || rate > INT32_MAX || align == 0 || align % channels != 0) return false;
    const int64_t width = align / channels;
    int32_t bits = BitsThatFit(Get16(p + 14), width);
    if (tag == kTagExtensible) {
        if (size < 18 + kExtra || Get16(p + 16) < kExtra) return false;
        if (std::memcmp(p + 26, kSubFormatRest, sizeof(kSubFormatRest)) != 0) return false;
        tag = Get16(p + 24);
        if (bits == 0) bits = BitsThatFit(Get16(p + 18), width);
    }
    if (bits == 0 || (tag != kTagInteger && tag != kTagFloat)) return false;
    props = {static_cast<int32_t>(channels), static_cast<int32_t>(rate), tag == kTagFloat ? -bits : bits, 0};
    return true;
}

HRESULT ReadWhole(File &file, uint64_t at, uint8_t *bytes, size_t n) {
    size_t got = 0;
    const HRESULT hr = file.ReadAt(at, bytes, n, got);
    if (FAILED(hr)) return hr;
    return got == n ? S_OK : kVfwEInvalidMediaType;
}

HRESULT FormatFind(File &file, uint64_t at, uint32_t size, Z_AUD_PROPS &props) {
    uint8_t format[18 + kExtra] = {};
    if (size < 16) return kVfwEInvalidMediaType;
    const HRESULT hr = ReadWhole(file, at, format, std::min<size_t>(size, sizeof(format)));
    if (FAILED(hr)) return hr;
    return FormatRead(format, size, props) ? S_OK : kVfwEInvalidMediaType;
}

}    // namespace

HRESULT WavFind(File &file, WavPlace &place) noexcept {
    place = {};
    uint64_t end = 0;
    HRESULT hr = file.Size(end);
    uint8_t head[12];
    if (SUCCEEDED(hr)) hr = ReadWhole(file, 0, head, sizeof(head));
    if (FAILED(hr)) return hr;
    if (!IsTag(head, "RIFF") || !IsTag(head + 8, "WAVE")) return kVfwEInvalidMediaType;
    uint64_t at = 12;
    for (int i = 0; i < kChunksMax; ++i) {
        hr = ReadWhole(file, at, head, 8);
        if (FAILED(hr)) return hr;
        const uint32_t size = Get32(head + 4);
        const uint64_t body = at + 8;
        if (IsTag(head, "data")) {
            if (place.props.nChannels == 0) return kVfwEInvalidMediaType;
            place.sizeAt = at + 4;
            place.dataAt = body;
            const bool unfinished = size == 0 || size == UINT32_MAX;
            place.dataBytes = unfinished ? end - body : std::min<uint64_t>(size, end - body);
            return S_OK;
        }
        if (IsTag(head, "fmt ") && place.props.nChannels == 0) {
            if (body + size > end) return kVfwEInvalidMediaType;
            hr = FormatFind(file, body, size, place.props);
            if (FAILED(hr)) return hr;
        }
        at = body + size + (size & 1);
    }
    return kVfwEInvalidMediaType;
}

HRESULT WavHeaderMake(const Z_AUD_PROPS &props, uint32_t dataBytes, WavHeader &header) noexcept {
    const int64_t bits = std::llabs(int64_t{props.nBitsPerSample});
    const int64_t width = AudioSampleBytes(props.nBitsPerSample);
    const int64_t align = width * props.nChannels;
    if (!AudioPropsValid(&props, true) || props.nChannels > UINT16_MAX || align > UINT16_MAX) return kVfwEInvalidMediaType;
    const bool plain = props.nChannels <= 2 && bits <= 16;
    const uint32_t tag = props.nBitsPerSample < 1 ? kTagFloat : kTagInteger;
    const auto channels = static_cast<uint32_t>(props.nChannels);
    const auto rate = static_cast<uint32_t>(props.nSamplesPerSec);

    Writer out(header);
    out.Tag("RIFF");
    out.Put32(dataBytes + (plain ? 36 : 60));
    out.Tag("WAVE");
    out.Tag("fmt ");
    out.Put32(plain ? 16 : 18 + kExtra);
    out.Put16(plain ? tag : kTagExtensible);
    out.Put16(channels);
    out.Put32(rate);
    out.Put32(rate * static_cast<uint32_t>(align));
    out.Put16(static_cast<uint32_t>(align));
    // Samples of three bytes are called 32 bits here; their own number stands in the extensible part.
    out.Put16(width == 3 ? 32 : static_cast<uint32_t>(width * 8));
    if (!plain) {
        out.Put16(kExtra);
        out.Put16(static_cast<uint32_t>(bits));
        out.Put32(channels >= 32 ? UINT32_MAX : (1U << channels) - 1);
        out.Put16(tag);
        out.Bytes(kSubFormatRest, sizeof(kSubFormatRest));
    }
    out.Tag("data");
    out.Put32(dataBytes);
    return S_OK;
}

}    // namespace zck
