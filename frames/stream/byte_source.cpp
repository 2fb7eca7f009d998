#include "frames/stream/byte_source.h"

#include <algorithm>

#include "platform/copy.h"

namespace zck {
namespace {

// Allocated without a check of how many bytes follow.
constexpr uint32_t kTrusted = uint32_t{64} << 10;
// The first piece of a value that a stream cannot tell the end of.
constexpr uint32_t kFirstPiece = uint32_t{1} << 20;

LARGE_INTEGER Move(int64_t distance) {
    LARGE_INTEGER move = {};
    move.QuadPart = distance;
    return move;
}

}    // namespace

HRESULT ByteSource::ReadText(Text &text) {
    const uint64_t start = Position();
    HRESULT hr = ReadTextHere(text);
    if (hr == kErrorHandleEof) hr = E_FAIL;
    if (FAILED(hr)) Back(start);
    return hr;
}

HRESULT ByteSource::ReadTextHere(Text &text) {
    uint32_t count = 0;
    HRESULT hr = Read(&count, sizeof(count));
    if (FAILED(hr)) return hr;
    if (count > kTextBytesMax) return E_ACCESSDENIED;
    if (count % sizeof(OLECHAR) != 0) return E_FAIL;
    Text read;
    if (count != 0) {
        OLECHAR last = 0;
        read.resize(count / sizeof(OLECHAR) - 1);
        hr = Read(read.data(), count - static_cast<uint32_t>(sizeof(last)));
        if (SUCCEEDED(hr)) hr = Read(&last, sizeof(last));
        if (FAILED(hr)) return hr;
        if (last != 0) return E_FAIL;
    }
    text.swap(read);
    return S_OK;
}

HRESULT BlockSource::Read(void *to, uint32_t count) {
    const uint32_t there = Bounded(count);
    if (there != 0) CopyBytes(to, m_at + m_used, there);
    m_used += there;
    return there == count ? S_OK : kErrorHandleEof;
}

HRESULT BlockSource::ReadField(void *to, uint32_t count) {
    Read(to, count);
    return S_OK;
}

HRESULT BlockSource::Skip(uint32_t count) {
    if (count > Left()) return E_INVALIDARG;
    m_used += count;
    return S_OK;
}

uint32_t BlockSource::Bounded(uint32_t count) const { return std::min(count, Left()); }

HRESULT BlockSource::ReadBlock(uint32_t count, CBLOBHolder<CHeapAlloc> &to) {
    to.Clear();
    if (count > Left()) return kErrorHandleEof;
    const HRESULT hr = to.Reserve(count);
    return SUCCEEDED(hr) ? Read(to.Data(), count) : hr;
}

// A stream may give less than it is asked for and more at the next call; only nothing is its end.
HRESULT StreamSource::Read(void *to, uint32_t count) {
    auto *at = static_cast<uint8_t *>(to);
    while (count != 0) {
        ULONG got = 0;
        const HRESULT hr = m_stream->Read(at, count, &got);
        if (FAILED(hr)) return hr;
        if (got == 0) return kErrorHandleEof;
        if (got > count) return E_UNEXPECTED;
        m_read += got;
        at += got;
        count -= got;
    }
    return S_OK;
}

HRESULT StreamSource::Skip(uint32_t count) {
    const HRESULT hr = m_stream->Seek(Move(count), STREAM_SEEK_CUR, nullptr);
    if (SUCCEEDED(hr)) m_read += count;
    return hr;
}

void StreamSource::Back(uint64_t position) {
    m_stream->Seek(Move(-static_cast<int64_t>(m_read - position)), STREAM_SEEK_CUR, nullptr);
    m_read = position;
}

// Whether the stream's end lies that far behind its position. False also for a stream without an end.
bool StreamSource::Holds(uint32_t count) {
    ULARGE_INTEGER here = {};
    ULARGE_INTEGER end = {};
    if (FAILED(m_stream->Seek(Move(0), STREAM_SEEK_CUR, &here))) return false;
    if (FAILED(m_stream->Seek(Move(0), STREAM_SEEK_END, &end))) return false;
    const HRESULT hr = m_stream->Seek(Move(static_cast<int64_t>(here.QuadPart)), STREAM_SEEK_SET, nullptr);
    return SUCCEEDED(hr) && end.QuadPart >= here.QuadPart && end.QuadPart - here.QuadPart >= count;
}

HRESULT StreamSource::ReadBlock(uint32_t count, CBLOBHolder<CHeapAlloc> &to) {
    to.Clear();
    if (count > INT32_MAX) return E_OUTOFMEMORY;
    if (count > kTrusted && !Holds(count)) return ReadGrowing(count, to);
    HRESULT hr = to.Reserve(count);
    if (SUCCEEDED(hr)) hr = Read(to.Data(), count);
    if (FAILED(hr)) to.Clear();
    return hr;
}

// The block doubles as long as bytes come.
HRESULT StreamSource::ReadGrowing(uint32_t count, CBLOBHolder<CHeapAlloc> &to) {
    uint32_t have = 0;
    HRESULT hr = S_OK;
    while (SUCCEEDED(hr) && have < count) {
        const uint32_t size = have < count / 2 ? std::max(2 * have, std::min(kFirstPiece, count)) : count;
        CBLOBHolder<CHeapAlloc> larger;
        hr = larger.Reserve(size);
        if (FAILED(hr)) break;
        if (have != 0) CopyBytes(larger.Data(), to.Data(), have);
        hr = Read(larger.Data(have), size - have);
        to.Attach(larger.Detach(), size);
        have = size;
    }
    if (FAILED(hr)) to.Clear();
    return hr;
}

}    // namespace zck
