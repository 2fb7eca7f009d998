#include "platform/settings.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace zck {
namespace {

constexpr size_t kMostFileBytes = 4 * kMostSettingsText;

class File {
public:
    explicit File(int handle) noexcept : m_handle(handle) {}
    ~File() { Close(); }
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    int get() const noexcept { return m_handle; }
    bool Close() noexcept {
        const int handle = std::exchange(m_handle, -1);
        return handle < 0 || close(handle) == 0;
    }

private:
    int m_handle;
};

/// The folder of all settings, without a stroke at its end; empty when the user has none.
std::string ConfigFolder() {
    const char *config = secure_getenv("XDG_CONFIG_HOME");
    if (config != nullptr && config[0] == '/') return config;
    const char *home = secure_getenv("HOME");
    return home != nullptr && home[0] == '/' ? std::string(home) + "/.config" : std::string();
}

/// Folders and file name below the configuration folder; empty for a key that is refused.
std::vector<std::string> PathOfKey(TextView key) {
    std::vector<Text> elements;
    if (!SettingsKeyElements(key, elements)) return {};
    if (elements.size() > 1 && EqualNoCase(elements[0], ZCK_TEXT("Software"))) elements.erase(elements.begin());
    std::vector<std::string> path;
    for (const Text &element : elements) path.push_back(Utf8FromText(element));
    path.back() += ".conf";
    return path;
}

HRESULT ReadAll(int handle, std::string &bytes) {
    for (;;) {
        char block[8192];
        const ssize_t count = read(handle, block, sizeof(block));
        if (count == 0) return S_OK;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return LastSystemError(E_FAIL);
        bytes.append(block, static_cast<size_t>(count));
        if (bytes.size() > kMostFileBytes) return SystemErrorStatus(EFBIG, E_FAIL);
    }
}

HRESULT WriteAll(int handle, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(handle, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return LastSystemError(E_FAIL);
        bytes.remove_prefix(static_cast<size_t>(count));
    }
    return S_OK;
}

/// Splits a line at its first "=" without an escape. False for a line that is not well-formed.
bool ParseLine(std::string_view line, std::string &name, std::string &value) {
    std::string *part = &name;
    for (size_t i = 0; i < line.size(); ++i) {
        char c = line[i];
        if (c == '\0') return false;
        if (c == '=' && part == &name) {
            part = &value;
            continue;
        }
        if (c == '\\') {
            if (++i == line.size()) return false;
            c = line[i] == 'n' ? '\n' : line[i] == 'r' ? '\r' : line[i];
            const bool plain = c == '\\' || c == '=' || c == '#';
            if (!plain && c != '\n' && c != '\r') return false;
        }
        part->push_back(c);
    }
    return part == &value && !name.empty();
}

void ParseFile(std::string_view bytes, std::vector<StoredSetting> &settings) {
    size_t units = 0;
    while (!bytes.empty() && settings.size() < kMostSettings) {
        const size_t end = bytes.find('\n');
        std::string_view line = bytes.substr(0, end);
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.empty() || line[0] == '#') continue;
        std::string name;
        std::string value;
        StoredSetting setting;
        if (!ParseLine(line, name, value) || !TextFromUtf8Strict(name, setting.name)) continue;
        if (!TextFromUtf8Strict(value, setting.value)) continue;
        units += setting.name.size() + setting.value.size();
        if (units > kMostSettingsText) return;
        settings.push_back(std::move(setting));
    }
}

std::string Escaped(TextView text, std::string_view signs) {
    std::string escaped;
    for (const char c : Utf8FromText(text)) {
        if (c == '\n' || c == '\r') {
            escaped.append(c == '\n' ? "\\n" : "\\r");
            continue;
        }
        if (signs.find(c) != std::string_view::npos) escaped.push_back('\\');
        escaped.push_back(c);
    }
    return escaped;
}

std::string FileOf(const std::vector<StoredSetting> &settings) {
    std::string bytes;
    for (const StoredSetting &setting : settings) {
        bytes.append(Escaped(setting.name, "\\=#")).append("=").append(Escaped(setting.value, "\\")).append("\n");
    }
    return bytes;
}

/// Makes the folders above a file. Whether they are there is seen when the file is made.
void MakeFolders(const std::string &path) {
    for (size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1)) {
        mkdir(path.substr(0, at).c_str(), S_IRWXU);
    }
}

/// Writes beside the file and puts the new one in its place when it is whole on the disk.
HRESULT Replace(const std::string &path, std::string_view bytes) {
    std::string beside = path + ".XXXXXX";
    File file(mkostemp(beside.data(), O_CLOEXEC));
    if (file.get() < 0) return LastSystemError(E_FAIL);
    HRESULT hr = WriteAll(file.get(), bytes);
    if (SUCCEEDED(hr) && fsync(file.get()) != 0) hr = LastSystemError(E_FAIL);
    if (!file.Close() && SUCCEEDED(hr)) hr = LastSystemError(E_FAIL);
    if (SUCCEEDED(hr) && rename(beside.c_str(), path.c_str()) != 0) hr = LastSystemError(E_FAIL);
    if (FAILED(hr)) unlink(beside.c_str());
    return hr;
}

std::string Joined(const std::string &folder, const std::vector<std::string> &path) {
    std::string joined = folder;
    for (const std::string &element : path) joined.append("/").append(element);
    return joined;
}

}    // namespace

HRESULT SettingsLoad(TextView key, std::vector<StoredSetting> &settings) noexcept {
    settings.clear();
    return Guarded([&]() -> HRESULT {
        const std::vector<std::string> path = PathOfKey(key);
        if (path.empty()) return E_INVALIDARG;
        const std::string folder = ConfigFolder();
        if (folder.empty()) return S_FALSE;
        // Does not wait: a pipe in the file's place must not hold up an object's construction.
        const File file(open(Joined(folder, path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        if (file.get() < 0) return errno == ENOENT || errno == ENOTDIR ? S_FALSE : LastSystemError(E_FAIL);
        struct stat facts = {};
        if (fstat(file.get(), &facts) != 0) return LastSystemError(E_FAIL);
        if (!S_ISREG(facts.st_mode)) return kErrorAccessDenied;
        std::string bytes;
        const HRESULT hr = ReadAll(file.get(), bytes);
        if (FAILED(hr)) return hr;
        ParseFile(bytes, settings);
        return S_OK;
    });
}

HRESULT SettingsSave(TextView key, const std::vector<StoredSetting> &settings) noexcept {
    return Guarded([&]() -> HRESULT {
        const std::vector<std::string> path = PathOfKey(key);
        if (path.empty() || !SettingsAreValid(settings)) return E_INVALIDARG;
        const std::string folder = ConfigFolder();
        if (folder.empty()) return kErrorFileNotFound;
        const std::string whole = Joined(folder, path);
        MakeFolders(whole);
        return Replace(whole, FileOf(settings));
    });
}

}    // namespace zck
