#include "platform/status.h"

#include <cerrno>

namespace zck {
namespace {

struct ErrorName {
    int32_t posix;
    uint16_t windows;
};

// The numbers behind 0x8007, by meaning.
constexpr ErrorName kNames[] = {
    {ENOENT, 2},            // file not found
    {ENOTDIR, 3},           // path not found
    {EMFILE, 4},            // too many open files
    {ENFILE, 4},            //
    {EACCES, 5},            // access denied
    {EPERM, 5},             //
    {EISDIR, 5},            //
    {EBADF, 6},             // invalid handle
    {ENOMEM, 14},           // out of memory
    {EXDEV, 17},            // not the same device
    {EROFS, 19},            // write-protected
    {ETXTBSY, 32},          // sharing violation
    {EOPNOTSUPP, 50},       // not supported
    {EINVAL, 87},           // bad parameter
    {EPIPE, 109},           // broken pipe
    {ENOSPC, 112},          // disk full
    {EDQUOT, 112},          //
    {ENOSYS, 120},          // not implemented
    {ENOTEMPTY, 145},       // directory not empty
    {EBUSY, 170},           // busy
    {EEXIST, 183},          // already exists
    {ENAMETOOLONG, 206},    // name too long
    {EFBIG, 223},           // file too large
    {EFAULT, 487},          // bad address
    {EINTR, 995},           // aborted
    {EIO, 1117},            // device error
    {EDEADLK, 1131},        // deadlock
    {EAGAIN, 1450},         // no system resources
    {ETIMEDOUT, 1460},      // time-out
    {ELOOP, 1921},          // name cannot be resolved
};

}    // namespace

HRESULT SystemErrorStatus(int32_t error, HRESULT fallback) noexcept {
    for (const ErrorName &name : kNames) {
        if (name.posix == error) return StatusOf(0x80070000U | name.windows);
    }
    return fallback;
}

HRESULT LastSystemError(HRESULT fallback) noexcept { return SystemErrorStatus(errno, fallback); }

}    // namespace zck
