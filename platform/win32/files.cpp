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

bool SystemHasDrives() noexcept { return true; }

bool FileExists(TextView path) noexcept {
    if (HasZero(path)) return false;
    return SUCCEEDED(
        Guarded([&] { return GetFileAttributesW(Text(path).c_str()) != INVALID_FILE_ATTRIBUTES ? S_OK : E_FAIL; }));
}

namespace {

HANDLE HandleOf(intptr_t file) { return reinterpret_cast<HANDLE>(file); }

bool Seek(intptr_t file, uint64_t at) {
    LARGE_INTEGER place;
    place.QuadPart = static_cast<LONGLONG>(at);
    return SetFilePointerEx(HandleOf(file), place, nullptr, FILE_BEGIN) != 0;
}

}    // namespace

File::~File() {
    if (m_file != -1) CloseHandle(HandleOf(m_file));
}

HRESULT File::Open(TextView path, FileMode mode) noexcept {
    if (HasZero(path)) return kErrorInvalidName;
    return Guarded([&] {
        const bool reads = mode == FileMode::Read;
        const DWORD how = reads ? OPEN_EXISTING : mode == FileMode::Update ? OPEN_ALWAYS : CREATE_ALWAYS;
        const HANDLE file = CreateFileW(Text(path).c_str(), reads ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE,
                                        reads ? FILE_SHARE_READ | FILE_SHARE_WRITE : FILE_SHARE_READ, nullptr, how,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) return LastSystemError(E_FAIL);
        if (m_file != -1) CloseHandle(HandleOf(m_file));
        m_file = reinterpret_cast<intptr_t>(file);
        return S_OK;
    });
}

HRESULT File::Size(uint64_t &bytes) noexcept {
    LARGE_INTEGER size;
    if (!GetFileSizeEx(HandleOf(m_file), &size)) return LastSystemError(E_FAIL);
    bytes = static_cast<uint64_t>(size.QuadPart);
    return S_OK;
}

HRESULT File::ReadAt(uint64_t at, void *data, size_t n, size_t &got) noexcept {
    got = 0;
    if (!Seek(m_file, at)) return LastSystemError(E_FAIL);
    while (got < n) {
        DWORD part = 0;
        const auto wanted = static_cast<DWORD>(std::min(kStep, n - got));
        if (!ReadFile(HandleOf(m_file), static_cast<char *>(data) + got, wanted, &part, nullptr))
            return LastSystemError(E_FAIL);
        if (part == 0) break;
        got += part;
    }
    return S_OK;
}

HRESULT File::WriteAt(uint64_t at, const void *data, size_t n, size_t &put) noexcept {
    put = 0;
    if (!Seek(m_file, at)) return LastSystemError(E_FAIL);
    while (put < n) {
        DWORD part = 0;
        const auto wanted = static_cast<DWORD>(std::min(kStep, n - put));
        if (!WriteFile(HandleOf(m_file), static_cast<const char *>(data) + put, wanted, &part, nullptr))
            return LastSystemError(E_FAIL);
        put += part;
    }
    return S_OK;
}

HRESULT File::SetSize(uint64_t bytes) noexcept {
    return Seek(m_file, bytes) && SetEndOfFile(HandleOf(m_file)) ? S_OK : LastSystemError(E_FAIL);
}

}    // namespace zck
