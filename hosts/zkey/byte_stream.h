// Bytes of a file as a stream that the library reads.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "zchromakey/com.h"

namespace zkey {

/// Lives on its owner's stack, so nobody's references count; the library holds none after a call. One thread.
class ByteStream final : public IStream {
public:
    explicit ByteStream(std::string bytes) : m_bytes(std::move(bytes)) {}

    HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override {
        const bool known = riid == IID_IUnknown || riid == IID_ISequentialStream || riid == IID_IStream;
        *ppv = known ? static_cast<IStream *>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG Z_STDCALL AddRef() override { return 2; }
    ULONG Z_STDCALL Release() override { return 1; }

    HRESULT Z_STDCALL Read(void *pv, ULONG cb, ULONG *pcbRead) override {
        const auto count = static_cast<ULONG>(std::min<uint64_t>(cb, Size() - std::min(m_at, Size())));
        if (count != 0) std::memcpy(pv, m_bytes.data() + m_at, count);
        m_at += count;
        if (pcbRead != nullptr) *pcbRead = count;
        return count == cb ? S_OK : S_FALSE;
    }
    HRESULT Z_STDCALL Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin, ULARGE_INTEGER *plibNewPosition) override {
        const uint64_t from = dwOrigin == STREAM_SEEK_SET ? 0 : dwOrigin == STREAM_SEEK_CUR ? m_at : Size();
        const auto to = static_cast<int64_t>(from + static_cast<uint64_t>(dlibMove.QuadPart));
        if (to < 0) return E_INVALIDARG;
        m_at = static_cast<uint64_t>(to);
        if (plibNewPosition != nullptr) plibNewPosition->QuadPart = m_at;
        return S_OK;
    }

    HRESULT Z_STDCALL Write(const void *, ULONG, ULONG *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL CopyTo(IStream *, ULARGE_INTEGER, ULARGE_INTEGER *, ULARGE_INTEGER *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL Revert() override { return E_NOTIMPL; }
    HRESULT Z_STDCALL LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL Stat(STATSTG *, DWORD) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL Clone(IStream **) override { return E_NOTIMPL; }

private:
    uint64_t Size() const { return m_bytes.size(); }

    const std::string m_bytes;
    uint64_t m_at = 0;
};

}    // namespace zkey
