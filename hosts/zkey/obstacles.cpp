#include "hosts/zkey/obstacles.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/system.h"

namespace zkey {
namespace {

std::string FolderOf(const std::string &path) {
    const std::size_t end = path.find_last_of("/\\");
    return end == std::string::npos ? "" : path.substr(0, end);
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
    if (file == nullptr) Fail("cannot write " + path + ": " + (IsFolder(path) ? "it is a folder" : std::strerror(errno)));
    std::fclose(file);
    if (isNew) RemoveFile(path);
}

}    // namespace zkey
