#include "platform/copy.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

namespace zck {
namespace {

/// Lets the kernel read one byte of each page into a pipe; it answers an error where a read of ours would raise a signal.
/// Much cheaper than asking it for the pages or for the whole copy.
class PageProbe {
public:
    PageProbe() noexcept : m_open(pipe2(m_ends, O_CLOEXEC) == 0) {}
    ~PageProbe() {
        if (!m_open) return;
        close(m_ends[0]);
        close(m_ends[1]);
    }
    PageProbe(const PageProbe &) = delete;
    PageProbe &operator=(const PageProbe &) = delete;

    bool IsOpen() const noexcept { return m_open; }

    /// Whether every page of the block, which has bytes, can be read.
    bool CanRead(const void *src, size_t n) noexcept {
        const auto start = reinterpret_cast<uintptr_t>(src);
        const uintptr_t last = start + (n - 1);
        if (last < start) return false;
        const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
        iovec bytes[kAtOnce];
        int count = 0;
        for (uintptr_t at = start; at <= last;) {
            bytes[count++] = {reinterpret_cast<void *>(at), 1};
            const uintptr_t next = (at & ~(page - 1)) + page;
            const bool end = next < at || next > last;
            if ((end || count == kAtOnce) && !Pass(bytes, std::exchange(count, 0))) return false;
            if (end) break;
            at = next;
        }
        return true;
    }

private:
    static constexpr int kAtOnce = 1024;    // the most that the call takes; any pipe has room for so many bytes

    bool Pass(const iovec *bytes, int count) noexcept {
        ssize_t put = 0;
        do {
            put = writev(m_ends[1], bytes, count);
        } while (put < 0 && errno == EINTR);
        char drain[kAtOnce];
        ssize_t got = 0;
        while (put > 0 && got < put) {
            const ssize_t some = read(m_ends[0], drain, static_cast<size_t>(put - got));
            if (some == 0 || (some < 0 && errno != EINTR)) return false;
            got += std::max<ssize_t>(some, 0);
        }
        return put == count;
    }

    int m_ends[2] = {-1, -1};
    bool m_open;
};

/// The way when no pipe can be had.
bool CopyByKernel(void *dst, const void *src, size_t n) noexcept {
    constexpr size_t kAtOnce = size_t{1} << 30;    // one call stops short of 2 GiB
    auto *to = static_cast<unsigned char *>(dst);
    auto *from = static_cast<unsigned char *>(const_cast<void *>(src));
    for (size_t done = 0; done < n;) {
        const size_t ask = std::min(n - done, kAtOnce);
        const iovec local{to + done, ask};
        const iovec remote{from + done, ask};
        const ssize_t got = process_vm_readv(getpid(), &local, 1, &remote, 1, 0);
        if (got <= 0) return false;
        done += static_cast<size_t>(got);
    }
    return true;
}

}    // namespace

void CopyBytes(void *dst, const void *src, size_t n) noexcept {
    if (n != 0) std::memcpy(dst, src, n);
}

bool CopyBytesGuarded(void *dst, const void *src, size_t n) noexcept {
    if (n == 0) return true;
    PageProbe probe;
    if (!probe.IsOpen()) return CopyByKernel(dst, src, n);
    if (!probe.CanRead(src, n)) return false;
    std::memcpy(dst, src, n);
    return true;
}

}    // namespace zck
