#include "platform/section.h"

#include <charconv>
#include <string_view>
#include <utility>

#include "platform/process.h"
#include "platform/status.h"
#include "platform/text.h"

namespace zck {
namespace {

/// A section's two names, in the order in which they are tried.
struct Names {
    explicit Names(uint64_t id) noexcept {
        char digits[16];
        const char *end = std::to_chars(digits, digits + sizeof(digits), id, 16).ptr;
        const std::string_view number(digits, static_cast<size_t>(end - digits));
        Put(global, L"Global\\ZBuffer_", number);
        Put(session, L"ZBuffer_", number);
    }
    static void Put(wchar_t *to, const wchar_t *prefix, std::string_view number) noexcept {
        while (*prefix != 0) *to++ = *prefix++;
        for (const char digit : number) *to++ = AsciiUpper(static_cast<wchar_t>(digit));
        *to = 0;
    }
    wchar_t global[40];
    wchar_t session[40];
};

HANDLE HandleOf(int64_t value) noexcept { return reinterpret_cast<HANDLE>(value); }

}    // namespace

HRESULT Section::Create(uint64_t id, uint64_t bytes) noexcept {
    Close();
    if (bytes == 0) return E_INVALIDARG;
    const Names names(id);
    for (const auto &[name, session] : {std::pair(names.global, false), std::pair(names.session, true)}) {
        // Committed at once: the page file's room is taken here.
        const HANDLE handle = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | SEC_COMMIT,
                                                 static_cast<DWORD>(bytes >> 32), static_cast<DWORD>(bytes), name);
        if (handle == nullptr) continue;
        if (GetLastError() == ERROR_ALREADY_EXISTS) {
            CloseHandle(handle);
            return S_FALSE;
        }
        m_handle = reinterpret_cast<int64_t>(handle);
        m_session = session;
        m_process = CurrentProcessId();
        m_id = id;
        return S_OK;
    }
    return LastSystemError(E_UNEXPECTED);
}

HRESULT Section::Open(uint64_t id) noexcept {
    Close();
    const Names names(id);
    for (const auto &[name, session] : {std::pair(names.global, false), std::pair(names.session, true)}) {
        const HANDLE handle = OpenFileMappingW(FILE_MAP_ALL_ACCESS, FALSE, name);
        if (handle == nullptr) continue;
        m_handle = reinterpret_cast<int64_t>(handle);
        m_session = session;
        m_process = CurrentProcessId();
        m_id = id;
        return S_OK;
    }
    return LastSystemError(E_UNEXPECTED);
}

HRESULT Section::Map() noexcept {
    if (!IsOpen()) return E_UNEXPECTED;
    if (m_view != nullptr) return S_OK;
    void *view = MapViewOfFile(HandleOf(m_handle), FILE_MAP_ALL_ACCESS, 0, 0, 0);
    if (view == nullptr) return LastSystemError(E_UNEXPECTED);
    MEMORY_BASIC_INFORMATION region{};
    if (VirtualQuery(view, &region, sizeof(region)) == 0) {
        const HRESULT hr = LastSystemError(E_UNEXPECTED);
        UnmapViewOfFile(view);
        return hr;
    }
    m_view = static_cast<uint8_t *>(view);
    m_size = region.RegionSize;
    return S_OK;
}

void Section::Close() noexcept {
    if (m_view != nullptr) UnmapViewOfFile(std::exchange(m_view, nullptr));
    if (IsOpen()) CloseHandle(HandleOf(std::exchange(m_handle, kClosed)));
    m_size = 0;
    m_id = 0;
}

}    // namespace zck
