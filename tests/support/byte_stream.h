// A stream over bytes in memory that can fail in the ways that streams fail.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/com_ptr.h"
#include "platform/object.h"

namespace zck {

class CByteStream : public CoObject<IStream> {
public:
    HRESULT Z_STDCALL Read(void *pv, ULONG cb, ULONG *pcbRead) override {
        m_largestAsked = std::max<size_t>(m_largestAsked, cb);
        const size_t count = std::min<size_t>({cb, m_bytes.size() - std::min(m_position, m_bytes.size()), m_most});
        if (FAILED(m_status)) return m_status;
        if (count != 0) std::memcpy(pv, m_bytes.data() + m_position, count);
        m_position += count;
        if (pcbRead != nullptr) *pcbRead = static_cast<ULONG>(count);
        return count == cb ? S_OK : S_FALSE;
    }
    HRESULT Z_STDCALL Write(const void *pv, ULONG cb, ULONG *pcbWritten) override {
        const size_t count = std::min<size_t>(cb, m_most);
        if (cb < m_least || m_after == 0) return E_ACCESSDENIED;
        --m_after;
        if (m_bytes.size() < m_position + count) m_bytes.resize(m_position + count);
        std::memcpy(m_bytes.data() + m_position, pv, count);
        m_position += count;
        if (FAILED(m_status)) return m_status;
        if (pcbWritten != nullptr) *pcbWritten = static_cast<ULONG>(count);
        return S_OK;
    }
    HRESULT Z_STDCALL Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin, ULARGE_INTEGER *plibNewPosition) override {
        if (!m_seeks) return kInvalidFunction;
        const size_t origin = dwOrigin == STREAM_SEEK_CUR ? m_position : dwOrigin == STREAM_SEEK_END ? m_bytes.size() : 0;
        m_position = origin + static_cast<size_t>(dlibMove.QuadPart);
        if (plibNewPosition != nullptr) plibNewPosition->QuadPart = m_position;
        return S_OK;
    }
    HRESULT Z_STDCALL SetSize(ULARGE_INTEGER) override { return kInvalidFunction; }
    HRESULT Z_STDCALL CopyTo(IStream *, ULARGE_INTEGER, ULARGE_INTEGER *, ULARGE_INTEGER *) override {
        return kInvalidFunction;
    }
    HRESULT Z_STDCALL Commit(DWORD) override { return S_OK; }
    HRESULT Z_STDCALL Revert() override { return S_OK; }
    HRESULT Z_STDCALL LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return kInvalidFunction; }
    HRESULT Z_STDCALL UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return kInvalidFunction; }
    HRESULT Z_STDCALL Stat(STATSTG *, DWORD) override { return kInvalidFunction; }
    HRESULT Z_STDCALL Clone(IStream **) override { return kInvalidFunction; }

    static constexpr HRESULT kInvalidFunction = StatusOf(0x80030001);
    std::string m_bytes;
    size_t m_position = 0;
    size_t m_most = SIZE_MAX;     // bytes that one call moves
    size_t m_least = 0;           // writes of fewer bytes are refused
    size_t m_after = SIZE_MAX;    // and all after so many
    size_t m_largestAsked = 0;    // by a read
    HRESULT m_status = S_OK;      // a failure is what every call answers
    bool m_seeks = true;
};

/// A counted stream and the object behind it.
struct ByteStream {
    explicit ByteStream(std::string bytes = {}, size_t position = 0) {
        CreateObject<CByteStream>(nullptr, IID_IStream, stream.PutVoid());
        object = static_cast<CByteStream *>(stream.get());
        object->m_bytes = std::move(bytes);
        object->m_position = position;
    }
    ComPtr<IStream> stream;
    CByteStream *object = nullptr;
};

}    // namespace zck
