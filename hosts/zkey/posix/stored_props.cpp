#include "hosts/zkey/stored_props.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

std::string ConfigFolder() {
    const char *config = std::getenv("XDG_CONFIG_HOME");
    if (config != nullptr && config[0] == '/') return config;
    const char *home = std::getenv("HOME");
    if (home == nullptr || home[0] != '/') Fail("there is no place for settings: neither XDG_CONFIG_HOME nor HOME is a folder");
    return std::string(home) + "/.config";
}

[[noreturn]] void FailStore() { Fail("cannot write " + StoredPlace() + ": " + std::strerror(errno)); }

std::vector<std::string> Lines() {
    std::vector<std::string> lines;
    std::FILE *file = IsFile(StoredPlace()) ? OpenFile(StoredPlace(), "rb") : nullptr;
    if (file == nullptr) {
        if (!IsFile(StoredPlace())) return lines;
        Fail("cannot read " + StoredPlace() + ": " + std::strerror(errno));
    }
    std::string line;
    for (int c = std::getc(file); c != EOF; c = std::getc(file)) {
        line.push_back(static_cast<char>(c));
        if (c == '\n') lines.push_back(std::move(line));
        if (c == '\n') line.clear();
    }
    std::fclose(file);
    // A last line without an end gets one, so that lines can be added.
    if (!line.empty()) lines.push_back(line + "\n");
    return lines;
}

/// The names of the keyer hold none of the signs that are escaped in the file.
bool IsOf(std::string_view line, std::string_view name) {
    return line.size() > name.size() && line[name.size()] == '=' && SameWord(line.substr(0, name.size()), name);
}

std::string Escaped(const std::string &value) {
    std::string out;
    for (const char c : value) {
        if (c == '\n' || c == '\r' || c == '\\') out.push_back('\\');
        out.push_back(c == '\n' ? 'n' : c == '\r' ? 'r' : c);
    }
    return out;
}

std::string Plain(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size() && text[i] != '\n'; ++i) {
        char c = text[i];
        if (c == '\\' && i + 1 < text.size()) {
            c = text[++i];
            c = c == 'n' ? '\n' : c == 'r' ? '\r' : c;
        }
        out.push_back(c);
    }
    if (!text.ends_with("\\r\n") && out.ends_with('\r')) out.pop_back();
    return out;
}

void MakeFolders(const std::string &path) {
    for (std::size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1)) {
        mkdir(path.substr(0, at).c_str(), S_IRWXU);
    }
}

/// A reader sees the old lines or the new ones, never a part.
void Replace(const std::string &bytes) {
    const std::string path = StoredPlace();
    MakeFolders(path);
    std::string beside = path + ".XXXXXX";
    const int handle = mkstemp(beside.data());
    std::FILE *file = handle < 0 ? nullptr : fdopen(handle, "wb");
    if (file == nullptr) FailStore();
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !written || std::rename(beside.c_str(), path.c_str()) != 0) {
        const int kept = errno;
        unlink(beside.c_str());
        errno = kept;
        FailStore();
    }
}

}    // namespace

std::string StoredPlace() { return ConfigFolder() + "/Orvane/Quorvex/ZChromaKey.conf"; }

std::optional<std::string> StoredProperty(const std::string &name) {
    std::optional<std::string> value;
    if (std::getenv("XDG_CONFIG_HOME") == nullptr && std::getenv("HOME") == nullptr) return value;
    for (const std::string &line : Lines()) {
        if (IsOf(line, name)) value = Plain(std::string_view(line).substr(name.size() + 1));
    }
    return value;
}

bool StoreProperty(const std::string &name, const std::optional<std::string> &value) {
    std::string bytes;
    bool found = false;
    for (const std::string &line : Lines()) {
        if (IsOf(line, name)) {
            found = true;
        } else {
            bytes += line;
        }
    }
    if (value) bytes += name + "=" + Escaped(*value) + "\n";
    if (value || found) Replace(bytes);
    return found;
}

}    // namespace zkey
