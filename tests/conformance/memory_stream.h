// A stream of bytes in memory, and texts as they stand in streams.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/text.h"

namespace conformance {

class MemoryStream final : public IStream {
public:
    HRESULT Z_STDCALL QueryInterface(REFIID, void **ppv) override {
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG Z_STDCALL AddRef() override { return 1; }
    ULONG Z_STDCALL Release() override { return 1; }
    HRESULT Z_STDCALL Read(void *pv, ULONG cb, ULONG *pcbRead) override {
        const size_t count = std::min<size_t>(cb, m_bytes.size() - m_at);
        std::memcpy(pv, m_bytes.data() + m_at, count);
        m_at += count;
        if (pcbRead != nullptr) *pcbRead = static_cast<ULONG>(count);
        return count == cb ? S_OK : S_FALSE;
    }
    HRESULT Z_STDCALL Write(const void *pv, ULONG cb, ULONG *pcbWritten) override {
        m_bytes.replace(m_at, std::min<size_t>(cb, m_bytes.size() - m_at), static_cast<const char *>(pv), cb);
        m_at += cb;
        if (pcbWritten != nullptr) *pcbWritten = cb;
        return S_OK;
    }
    HRESULT Z_STDCALL Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position) override {
        const auto from = static_cast<int64_t>(origin == 0 ? 0 : origin == 1 ? m_at : m_bytes.size());
        m_at = static_cast<size_t>(from + move.QuadPart);
        if (position != nullptr) position->QuadPart = m_at;
        return S_OK;
    }
    HRESULT Z_STDCALL SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL CopyTo(IStream *, ULARGE_INTEGER, ULARGE_INTEGER *, ULARGE_INTEGER *) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL Revert() override { return E_NOTIMPL; }
    HRESULT Z_STDCALL LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL Stat(STATSTG *, DWORD) override { return E_NOTIMPL; }
    HRESULT Z_STDCALL Clone(IStream **) override { return E_NOTIMPL; }

    std::string m_bytes;
    size_t m_at = 0;
};

inline std::string Count(uint32_t count) {
    std::string s;
    for (int i = 0; i < 4; ++i) s += static_cast<char>(count >> (8 * i));
    return s;
}

inline std::string TextBytes(zck::TextView text) {
    std::string s = Count(static_cast<uint32_t>(2 * text.size() + 2));
    for (const OLECHAR c : text) s += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    return s + std::string(2, '\0');
}

}    // namespace conformance
