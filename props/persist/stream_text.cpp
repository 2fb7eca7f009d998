#include "props/persist/stream_text.h"

#include "platform/status.h"

namespace zck {
namespace {

constexpr size_t kCountBytes = 4;
constexpr size_t kUnitBytes = 2;

/// Takes a stream back to where it stood, unless the work is done. A stream without a position stays where it is.
class PositionKeeper {
public:
    explicit PositionKeeper(IStream *stream) noexcept : m_stream(stream) {
        ULARGE_INTEGER position = {};
        m_known = SUCCEEDED(stream->Seek({}, STREAM_SEEK_CUR, &position));
        m_position.QuadPart = static_cast<int64_t>(position.QuadPart);
    }
    ~PositionKeeper() {
        if (m_known) m_stream->Seek(m_position, STREAM_SEEK_SET, nullptr);
    }
    PositionKeeper(const PositionKeeper &) = delete;
    PositionKeeper &operator=(const PositionKeeper &) = delete;

    HRESULT Done() noexcept {
        m_known = false;
        return S_OK;
    }

private:
    IStream *const m_stream;
    LARGE_INTEGER m_position = {};
    bool m_known = false;
};

HRESULT ReadExactly(IStream *stream, unsigned char *bytes, size_t count) {
    ULONG got = 0;
    const HRESULT hr = stream->Read(bytes, static_cast<ULONG>(count), &got);
    if (FAILED(hr)) return hr;
    return got == count ? S_OK : E_FAIL;
}

constexpr OLECHAR UnitOf(const unsigned char *bytes) { return static_cast<OLECHAR>(bytes[0] | bytes[1] << 8); }

constexpr uint32_t CountOf(const unsigned char *bytes) {
    return uint32_t{bytes[0]} | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 | uint32_t{bytes[3]} << 24;
}

void Append(std::string &bytes, uint32_t value, size_t count) {
    for (size_t i = 0; i < count; ++i) bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

HRESULT ReadUnits(IStream *stream, uint32_t count, Text &text) {
    if (count > kStreamTextBytesMax) return E_ACCESSDENIED;
    if (count % kUnitBytes != 0) return E_FAIL;
    std::basic_string<unsigned char> bytes(count, 0);
    const HRESULT hr = ReadExactly(stream, bytes.data(), count);
    if (FAILED(hr)) return hr;
    if (UnitOf(bytes.data() + count - kUnitBytes) != 0) return E_FAIL;
    Text read;
    read.reserve(count / kUnitBytes);
    for (size_t at = 0; at + kUnitBytes < count; at += kUnitBytes) read.push_back(UnitOf(bytes.data() + at));
    text.swap(read);
    return S_OK;
}

}    // namespace

HRESULT StreamTextRead(IStream *stream, Text &text) noexcept {
    return Guarded([&] {
        PositionKeeper keeper(stream);
        unsigned char head[kCountBytes] = {};
        HRESULT hr = ReadExactly(stream, head, sizeof(head));
        if (FAILED(hr)) return hr;
        const uint32_t count = CountOf(head);
        if (count == 0) {
            text.clear();
        } else {
            hr = ReadUnits(stream, count, text);
        }
        return FAILED(hr) ? hr : keeper.Done();
    });
}

HRESULT StreamTextWrite(IStream *stream, TextView text) noexcept {
    if (text.size() > kStreamTextBytesMax / kUnitBytes - 1) return E_ACCESSDENIED;
    return Guarded([&] {
        std::string bytes;
        const size_t count = text.empty() ? 0 : kUnitBytes * (text.size() + 1);
        bytes.reserve(kCountBytes + count);
        Append(bytes, static_cast<uint32_t>(count), kCountBytes);
        for (const OLECHAR unit : text) Append(bytes, unit, kUnitBytes);
        if (count != 0) Append(bytes, 0, kUnitBytes);
        PositionKeeper keeper(stream);
        ULONG put = 0;
        const HRESULT hr = stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &put);
        if (FAILED(hr)) return hr;
        return put == bytes.size() ? keeper.Done() : E_FAIL;
    });
}

}    // namespace zck
