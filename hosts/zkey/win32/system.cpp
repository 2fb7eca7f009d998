#include "hosts/zkey/system.h"

// The shell's header needs the system's before it.
// clang-format off
#include "zchromakey/com.h"
#include <shellapi.h>
// clang-format on
#include <fcntl.h>
#include <io.h>

#include <atomic>

namespace zkey {
namespace {

std::atomic<bool> g_interrupted{false};

// The second interrupt is left to the system, which ends the program.
BOOL WINAPI OnInterrupt(DWORD) { return g_interrupted.exchange(true) ? FALSE : TRUE; }

// The C library takes every character device for a terminal, and files that a shell has put in place of one.
bool IsConsole(DWORD handle) {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(handle), &mode) != 0;
}

std::wstring Wide(const std::string &text) {
    const int n = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring out(static_cast<size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), n);
    return out;
}

std::string Utf8(const wchar_t *text) {
    const int n = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(n > 0 ? n - 1 : 0), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, out.data(), n, nullptr, nullptr);
    return out;
}

std::wstring FullPath(const std::string &path) {
    const std::wstring wide = Wide(path);
    std::wstring out(32768, L'\0');
    out.resize(GetFullPathNameW(wide.c_str(), 32768, out.data(), nullptr));
    return out;
}

}    // namespace

void SystemStart() {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

std::vector<std::string> Arguments(int, char **) {
    int count = 0;
    LPWSTR *wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> out;
    for (int i = 1; wide != nullptr && i < count; ++i) out.push_back(Utf8(wide[i]));
    LocalFree(wide);
    return out;
}

std::FILE *OpenFile(const std::string &path, const char *mode) { return _wfopen(Wide(path).c_str(), Wide(mode).c_str()); }

int OpenForReading(const std::string &path) { return path == "-" ? 0 : _wopen(Wide(path).c_str(), _O_RDONLY | _O_BINARY); }

// An interrupt is seen when the wait for the next bytes of a pipe is over.
int64_t ReadSome(int descriptor, void *to, std::size_t bytes) {
    constexpr std::size_t kMost = 1U << 30;
    return g_interrupted ? 0 : _read(descriptor, to, static_cast<unsigned>(bytes < kMost ? bytes : kMost));
}

void CloseReading(int descriptor) {
    if (descriptor != 0) _close(descriptor);
}

int64_t FileSize(int descriptor) {
    const int64_t size = _filelengthi64(descriptor);
    return size > 0 ? size : 0;
}

bool SeekReading(int descriptor, int64_t offset) { return _lseeki64(descriptor, offset, SEEK_SET) == offset; }

bool IsFile(const std::string &path) {
    const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
}

bool IsFolder(const std::string &path) {
    const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool Exists(const std::string &path) { return GetFileAttributesW(Wide(path).c_str()) != INVALID_FILE_ATTRIBUTES; }

int64_t SizeOf(const std::string &path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(Wide(path).c_str(), GetFileExInfoStandard, &data) == 0) return 0;
    return (int64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
}

void RemoveFile(const std::string &path) { DeleteFileW(Wide(path).c_str()); }

bool SameFile(const std::string &a, const std::string &b) {
    return GetFileAttributesW(Wide(a).c_str()) != INVALID_FILE_ATTRIBUTES &&
           CompareStringOrdinal(FullPath(a).c_str(), -1, FullPath(b).c_str(), -1, TRUE) == CSTR_EQUAL;
}

bool ErrorIsTerminal() { return IsConsole(STD_ERROR_HANDLE); }
bool InputIsTerminal() { return IsConsole(STD_INPUT_HANDLE); }

void WatchInterrupt() { SetConsoleCtrlHandler(OnInterrupt, TRUE); }

bool Interrupted() { return g_interrupted; }

}    // namespace zkey
