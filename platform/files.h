// Files by 16-bit paths. On systems with byte paths the path is UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "platform/text.h"

namespace zck {

constexpr HRESULT kErrorInvalidName = static_cast<HRESULT>(0x8007007B);     ///< a path with a zero inside
constexpr HRESULT kErrorFileTooLarge = static_cast<HRESULT>(0x800700DF);    ///< more bytes than the caller takes

/// The whole file, which others may read and write meanwhile. Statuses of the system; `kErrorFileTooLarge` for a file of more
/// than `bytesMax`; a folder cannot be read. `out` is empty after a failure.
HRESULT FileRead(TextView path, size_t bytesMax, std::string &out) noexcept;

/// Creates the file, or empties an old one, and writes the bytes.
HRESULT FileWrite(TextView path, std::string_view bytes) noexcept;

/// Paths begin with a drive's letter.
bool SystemHasDrives() noexcept;

/// Something has this path, be it a file or a folder.
bool FileExists(TextView path) noexcept;

/// How a file is opened. Others may read it meanwhile, and while it is only read, write it too.
enum class FileMode {
    Read,      ///< an old file, to read
    Update,    ///< an old or a new file, to read and write
    Create,    ///< a new file; an old one is emptied
};

/// An open file. For one thread at a time. Calls on a file that is not open fail with the system's error.
class File {
public:
    File() noexcept = default;
    ~File();
    File(const File &) = delete;
    File &operator=(const File &) = delete;

    HRESULT Open(TextView path, FileMode mode) noexcept;
    HRESULT Size(uint64_t &bytes) noexcept;
    /// Reads from a place on; `got` is less than `n` only at the end of the file, and the bytes behind it stay.
    HRESULT ReadAt(uint64_t at, void *data, size_t n, size_t &got) noexcept;
    /// Writes from a place on, which may lie behind the end. After a failure `put` bytes are in the file.
    HRESULT WriteAt(uint64_t at, const void *data, size_t n, size_t &put) noexcept;
    /// Cuts the file off, or lengthens it with zeros.
    HRESULT SetSize(uint64_t bytes) noexcept;

private:
    intptr_t m_file = -1;
};

}    // namespace zck
