#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/status.h"

namespace zck {
namespace {

class Descriptor {
public:
    explicit Descriptor(int descriptor) noexcept : m_descriptor(descriptor) {}
    ~Descriptor() {
        if (m_descriptor >= 0) close(m_descriptor);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    explicit operator bool() const noexcept { return m_descriptor >= 0; }
    int get() const noexcept { return m_descriptor; }

private:
    const int m_descriptor;
};

/// A file that was to be created is not what is missing, but its folder.
HRESULT OpenFailure(bool creates) {
    constexpr HRESULT kErrorPathNotFound = static_cast<HRESULT>(0x80070003);
    return creates && errno == ENOENT ? kErrorPathNotFound : LastSystemError(E_FAIL);
}

bool HasZero(TextView path) noexcept { return path.find(OLECHAR{0}) != TextView::npos; }

HRESULT ReadAll(int descriptor, size_t bytesMax, std::string &out) {
    constexpr size_t kStep = 1 << 16;
    for (;;) {
        const size_t had = out.size();
        // One byte more than allowed, to see that there is more.
        const size_t wanted = std::min(std::max(kStep, had), bytesMax + 1 - had);
        out.resize(had + wanted);
        ssize_t got = -1;
        do got = read(descriptor, out.data() + had, wanted);
        while (got < 0 && errno == EINTR);
        if (got < 0) return LastSystemError(E_FAIL);
        out.resize(had + static_cast<size_t>(got));
        if (got == 0) return S_OK;
        if (out.size() > bytesMax) return kErrorFileTooLarge;
    }
}

}    // namespace

HRESULT FileRead(TextView path, size_t bytesMax, std::string &out) noexcept {
    out.clear();
    if (HasZero(path)) return kErrorInvalidName;
    const HRESULT hr = Guarded([&] {
        const Descriptor file(open(Utf8FromText(path).c_str(), O_RDONLY | O_CLOEXEC));
        if (!file) return LastSystemError(E_FAIL);
        return ReadAll(file.get(), bytesMax, out);
    });
    if (FAILED(hr)) out.clear();
    return hr;
}

HRESULT FileWrite(TextView path, std::string_view bytes) noexcept {
    if (HasZero(path)) return kErrorInvalidName;
    return Guarded([&] {
        const Descriptor file(open(Utf8FromText(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
        if (!file) return OpenFailure(true);
        while (!bytes.empty()) {
            const ssize_t put = write(file.get(), bytes.data(), bytes.size());
            if (put < 0 && errno == EINTR) continue;
            if (put < 0) return LastSystemError(E_FAIL);
            bytes.remove_prefix(static_cast<size_t>(put));
        }
        return S_OK;
    });
}

bool SystemHasDrives() noexcept { return false; }

bool FileExists(TextView path) noexcept {
    if (HasZero(path)) return false;
    struct stat facts;
    return SUCCEEDED(Guarded([&] { return stat(Utf8FromText(path).c_str(), &facts) == 0 ? S_OK : E_FAIL; }));
}

namespace {

// The most bytes of one call; the system takes no more than this at once.
constexpr size_t kCallMax = 1 << 30;

int FlagsOf(FileMode mode) {
    switch (mode) {
        case FileMode::Read:
            return O_RDONLY;
        case FileMode::Update:
            return O_RDWR | O_CREAT;
        default:
            return O_RDWR | O_CREAT | O_TRUNC;
    }
}

}    // namespace

File::~File() {
    if (m_file >= 0) close(static_cast<int>(m_file));
}

HRESULT File::Open(TextView path, FileMode mode) noexcept {
    if (HasZero(path)) return kErrorInvalidName;
    return Guarded([&] {
        const int file = open(Utf8FromText(path).c_str(), FlagsOf(mode) | O_CLOEXEC, 0666);
        if (file < 0) return OpenFailure(mode != FileMode::Read);
        if (m_file >= 0) close(static_cast<int>(m_file));
        m_file = file;
        return S_OK;
    });
}

HRESULT File::Size(uint64_t &bytes) noexcept {
    struct stat facts;
    if (fstat(static_cast<int>(m_file), &facts) != 0) return LastSystemError(E_FAIL);
    bytes = static_cast<uint64_t>(facts.st_size);
    return S_OK;
}

HRESULT File::ReadAt(uint64_t at, void *data, size_t n, size_t &got) noexcept {
    for (got = 0; got < n;) {
        const ssize_t part = pread(static_cast<int>(m_file), static_cast<char *>(data) + got, std::min(n - got, kCallMax),
                                   static_cast<off_t>(at + got));
        if (part < 0 && errno == EINTR) continue;
        if (part < 0) return LastSystemError(E_FAIL);
        if (part == 0) break;
        got += static_cast<size_t>(part);
    }
    return S_OK;
}

HRESULT File::WriteAt(uint64_t at, const void *data, size_t n, size_t &put) noexcept {
    for (put = 0; put < n;) {
        const ssize_t part = pwrite(static_cast<int>(m_file), static_cast<const char *>(data) + put,
                                    std::min(n - put, kCallMax), static_cast<off_t>(at + put));
        if (part < 0 && errno == EINTR) continue;
        if (part < 0) return LastSystemError(E_FAIL);
        put += static_cast<size_t>(part);
    }
    return S_OK;
}

HRESULT File::SetSize(uint64_t bytes) noexcept {
    return ftruncate(static_cast<int>(m_file), static_cast<off_t>(bytes)) == 0 ? S_OK : LastSystemError(E_FAIL);
}

}    // namespace zck
