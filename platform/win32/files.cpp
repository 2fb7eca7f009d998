#include "platform/files.h"

#include <algorithm>

#include "platform/status.h"

namespace zck {
namespace {

class FileHandle {
public:
    explicit FileHandle(HANDLE handle) noexcept : m_handle(handle) {}
    ~FileHandle() {
        if (m_handle != INVALID_HANDLE_VALUE) CloseHandle(m_handle);
    }
    FileHandle(const FileHandle &) = delete;
    FileHandle &operator=(const FileHandle &) = delete;

    explicit operator bool() const noexcept { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE get() const noexcept { return m_handle; }

private:
    const HANDLE m_handle;
};

constexpr size_t kStep = 1 << 20;

bool HasZero(TextView path) noexcept { return path.find(OLECHAR{0}) != TextView::npos; }

HRESULT ReadAll(HANDLE file, size_t bytesMax, std::string &out) {
    for (;;) {
        const size_t had = out.size();
        // One byte more than allowed, to see that there is more.
        const size_t wanted = std::min(kStep, bytesMax + 1 - had);
        out.resize(had + wanted);
        DWORD got = 0;
        if (!ReadFile(file, out.data() + had, static_cast<DWORD>(wanted), &got, nullptr)) return LastSystemError(E_FAIL);
        out.resize(had + got);
        if (got == 0) return S_OK;
        if (out.size() > bytesMax) return kErrorFileTooLarge;
    }
}

}    // namespace

HRESULT FileRead(TextView path, size_t bytesMax, std::string &out) noexcept {
    out.clear();
    if (HasZero(path)) return kErrorInvalidName;
    const HRESULT hr = Guarded([&] {
        const FileHandle file(CreateFileW(Text(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file) return LastSystemError(E_FAIL);
        return ReadAll(file.get(), bytesMax, out);
    });
    if (FAILED(hr)) out.clear();
    return hr;
}

HRESULT FileWrite(TextView path, std::string_view bytes) noexcept {
    if (HasZero(path)) return kErrorInvalidName;
    return Guarded([&] {
        const FileHandle file(CreateFileW(Text(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file) return LastSystemError(E_FAIL);
        while (!bytes.empty()) {
            DWORD put = 0;
            const DWORD wanted = static_cast<DWORD>(std::min(kStep, bytes.size()));
            if (!WriteFile(file.get(), bytes.data(), wanted, &put, nullptr)) return LastSystemError(E_FAIL);
            bytes.remove_prefix(put);
        }
        return S_OK;
    });
}

bool FileExists(TextView path) noexcept {
    if (HasZero(path)) return false;
    return SUCCEEDED(
        Guarded([&] { return GetFileAttributesW(Text(path).c_str()) != INVALID_FILE_ATTRIBUTES ? S_OK : E_FAIL; }));
}

}    // namespace zck
