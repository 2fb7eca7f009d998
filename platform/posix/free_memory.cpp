#include "platform/posix/free_memory.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <string_view>

namespace zck {
namespace {

constexpr uint64_t kNoLimit = std::numeric_limits<uint64_t>::max();
constexpr size_t kPathMax = 1024;

/// A short text file of the system, cut off where it is longer than the buffer. Empty when it cannot be read.
class SystemText {
public:
    explicit SystemText(const char *path) noexcept {
        const int file = open(path, O_RDONLY | O_CLOEXEC);
        if (file < 0) return;
        ssize_t got = 0;
        while (m_size < sizeof(m_bytes) && (got = read(file, m_bytes + m_size, sizeof(m_bytes) - m_size)) > 0)
            m_size += static_cast<size_t>(got);
        close(file);
    }
    std::string_view View() const noexcept { return {m_bytes, m_size}; }

private:
    char m_bytes[8192];
    size_t m_size = 0;
};

/// The number at the start of a text, behind blanks; `otherwise` where there is none ("max", nothing at all).
uint64_t NumberIn(std::string_view text, uint64_t otherwise) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    uint64_t number = 0;
    return std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc() ? number : otherwise;
}

/// The number of the line that starts with `name`; 0 where there is none.
uint64_t Field(std::string_view text, std::string_view name) noexcept {
    while (!text.empty()) {
        if (text.starts_with(name)) return NumberIn(text.substr(name.size()), 0);
        text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
    }
    return 0;
}

uint64_t Less(uint64_t a, uint64_t b) noexcept { return a > b ? a - b : 0; }

/// The files of a control group, by the version of the interface.
struct GroupFiles {
    const char *root;
    const char *limit;
    const char *used;
    const char *swapLimit;
    const char *swapUsed;
    std::string_view reclaimable[3];    // lines of memory.stat
};

constexpr GroupFiles kUnified = {"/sys/fs/cgroup",      "memory.max",
                                 "memory.current",      "memory.swap.max",
                                 "memory.swap.current", {"inactive_file ", "active_file ", "slab_reclaimable "}};
// Swap is counted together with memory there, and is taken to be free to the group.
constexpr GroupFiles kOfMemory = {"/sys/fs/cgroup/memory",
                                  "memory.limit_in_bytes",
                                  "memory.usage_in_bytes",
                                  nullptr,
                                  nullptr,
                                  {"total_inactive_file ", "total_active_file ", "total_slab_reclaimable "}};

/// One group on the way from that of this process to the root.
class Group {
public:
    Group(const GroupFiles &files, std::string_view path) noexcept : m_files(files), m_path(path) {}

    uint64_t Free(uint64_t swapFree) const noexcept {
        const uint64_t limit = Number(m_files.limit, kNoLimit);
        if (limit == kNoLimit) return kNoLimit;
        uint64_t used = Number(m_files.used, 0);
        const SystemText stat(Path("memory.stat").text);
        for (const std::string_view line : m_files.reclaimable) used = Less(used, Field(stat.View(), line));
        if (m_files.swapLimit != nullptr)
            swapFree = std::min(swapFree, Less(Number(m_files.swapLimit, kNoLimit), Number(m_files.swapUsed, 0)));
        // An old kernel's word for no limit is a number near the largest one.
        const uint64_t left = Less(limit, used);
        return left + std::min(swapFree, kNoLimit - left);
    }

private:
    struct FilePath {
        char text[kPathMax];
    };
    FilePath Path(const char *file) const noexcept {
        FilePath path;
        const int size = std::snprintf(path.text, sizeof(path.text), "%s%.*s/%s", m_files.root, static_cast<int>(m_path.size()),
                                       m_path.data(), file);
        if (size >= static_cast<int>(sizeof(path.text))) path.text[0] = 0;
        return path;
    }
    uint64_t Number(const char *file, uint64_t otherwise) const noexcept {
        return NumberIn(SystemText(Path(file).text).View(), otherwise);
    }

    const GroupFiles &m_files;
    const std::string_view m_path;
};

/// Memory left to the tightest of a control group and the groups around it.
uint64_t FreeInGroups(const GroupFiles &files, std::string_view path, uint64_t swapFree) noexcept {
    uint64_t least = kNoLimit;
    while (path.ends_with('/')) path.remove_suffix(1);
    for (;; path = path.substr(0, path.rfind('/'))) {
        least = std::min(least, Group(files, path).Free(swapFree));
        if (path.find('/') == std::string_view::npos) return least;
    }
}

/// Lines of the form number:controllers:path, without controllers for the unified hierarchy.
uint64_t FreeInAllGroups(uint64_t swapFree) noexcept {
    const SystemText groups("/proc/self/cgroup");
    uint64_t least = kNoLimit;
    for (std::string_view rest = groups.View(); !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (line.starts_with("0::"))
            least = std::min(least, FreeInGroups(kUnified, line.substr(3), swapFree));
        else if (const size_t memory = line.find(":memory:"); memory != std::string_view::npos)
            least = std::min(least, FreeInGroups(kOfMemory, line.substr(memory + 8), swapFree));
    }
    return least;
}

}    // namespace

uint64_t FreeMemory() noexcept {
    constexpr uint64_t kKilobyte = 1024;
    const SystemText machine("/proc/meminfo");
    const uint64_t available = Field(machine.View(), "MemAvailable:") * kKilobyte;
    if (available == 0) return kNoLimit;
    const uint64_t swap = Field(machine.View(), "SwapFree:") * kKilobyte;
    return std::min(available + swap, FreeInAllGroups(swap));
}

}    // namespace zck
