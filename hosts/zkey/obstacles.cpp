#include "hosts/zkey/obstacles.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/system.h"

namespace zkey {
namespace {

std::string FolderOf(const std::string &path) {
    const std::size_t end = path.find_last_of("/\\");
    return end == std::string::npos ? "" : path.substr(0, end);
}

std::string_view WithoutHere(std::string_view path) {
    while (path.starts_with("./")) path.remove_prefix(2);
    return path;
}

/// True when `name` is a picture of the sequence, or the sequence itself.
bool IsOfSequence(std::string_view name, std::string_view sequence) {
    const std::size_t number = sequence.find('%');
    const std::size_t end = sequence.find('d', number);
    if (number == sequence.npos || end == sequence.npos) return false;
    const std::string_view before = sequence.substr(0, number);
    const std::string_view behind = sequence.substr(end + 1);
    if (!name.starts_with(before) || !name.ends_with(behind) || name.size() <= before.size() + behind.size()) return false;
    const std::string_view middle = name.substr(before.size(), name.size() - before.size() - behind.size());
    return middle.starts_with('%') || middle.find_first_not_of("0123456789") == middle.npos;
}

}    // namespace

void RequireFile(const std::string &path) {
    if (path == "-" || path.find('%') != std::string::npos) return;
    const int file = OpenForReading(path);
    if (file < 0) Fail("cannot open " + path + ": " + std::strerror(errno));
    const bool empty = IsFile(path) && FileSize(file) == 0;
    CloseReading(file);
    if (empty) Fail(path + " is empty");
}

void RequireWritable(const std::string &path) {
    // A pipe is not tried: who reads it would take the trial for the end.
    if (path == "-" || (Exists(path) && !IsFile(path) && !IsFolder(path))) return;
    const std::string folder = FolderOf(path);
    if (!folder.empty() && !Exists(folder)) Fail("cannot write " + path + ": there is no folder " + folder);
    const bool isNew = !Exists(path);
    std::FILE *file = OpenFile(path, "ab");
    if (file == nullptr) {
        const std::string reason = std::strerror(errno);
        Fail("cannot write " + path + ": " + (IsFolder(path) ? "it is a folder" : reason));
    }
    std::fclose(file);
    if (isNew) RemoveFile(path);
}

bool WouldOverwrite(const std::string &written, const std::string &read) {
    return SameFile(written, read) || IsOfSequence(WithoutHere(read), WithoutHere(written)) ||
           IsOfSequence(WithoutHere(written), WithoutHere(read));
}

}    // namespace zkey
