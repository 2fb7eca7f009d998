// A handle is a locked object (section_object.h); what lies outside of the object is held attached beside it.
//
// Handles are not meant to pass through fork: a child that closes an inherited one leaves the parent's alone, but one that
// keeps it keeps the section.
#include "platform/section.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/posix/section_object.h"
#include "platform/process.h"
#include "platform/status.h"

namespace zck {

HRESULT Section::Create(uint64_t id, uint64_t bytes) noexcept {
    Close();
    if (bytes == 0) return E_INVALIDARG;
    SweepObjectsAtTimes();
    for (const bool session : {false, true}) {
        const ObjectName name(id, session);
        AttachedMemory memory;
        int fd = CreateObject(name, bytes, memory);
        if (fd < 0 && errno == ENOSPC) {
            SweepObjects();
            fd = CreateObject(name, bytes, memory);
        }
        if (fd < 0 && errno == EEXIST) return S_FALSE;
        if (fd < 0) continue;
        m_handle = fd;
        m_session = session;
        m_process = CurrentProcessId();
        m_id = id;
        m_heldSize = memory.Bytes();
        m_held = memory.Detach();
        return S_OK;
    }
    return LastSystemError(E_UNEXPECTED);
}

HRESULT Section::Open(uint64_t id) noexcept {
    Close();
    for (const bool session : {false, true}) {
        AttachedMemory memory;
        const int fd = OpenObject(ObjectName(id, session), memory);
        if (fd < 0) continue;
        m_handle = fd;
        m_session = session;
        m_process = CurrentProcessId();
        m_id = id;
        m_heldSize = memory.Bytes();
        m_held = memory.Detach();
        return S_OK;
    }
    return LastSystemError(E_UNEXPECTED);
}

HRESULT Section::Map() noexcept {
    if (!IsOpen()) return E_UNEXPECTED;
    if (m_view != nullptr) return S_OK;
    if (m_held == nullptr) {
        const int fd = static_cast<int>(m_handle);
        struct stat info {};
        if (fstat(fd, &info) != 0) return LastSystemError(E_UNEXPECTED);
        const auto size = static_cast<size_t>(info.st_size);
        void *view = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        if (view == MAP_FAILED) return LastSystemError(E_UNEXPECTED);
        m_held = static_cast<uint8_t *>(view);
        m_heldSize = size;
    }
    m_view = m_held;
    m_size = m_heldSize;
    return S_OK;
}

void Section::Close() noexcept {
    m_view = nullptr;
    m_size = 0;
    if (m_held != nullptr) munmap(std::exchange(m_held, nullptr), static_cast<size_t>(std::exchange(m_heldSize, 0)));
    if (IsOpen()) {
        const int fd = static_cast<int>(std::exchange(m_handle, kClosed));
        // After a fork the lock is one with the parent's, and to change it would take it from the parent.
        if (m_process == CurrentProcessId()) RemoveIfLast(fd, ObjectName(m_id, m_session));
        const int error = errno;
        close(fd);
        errno = error;
    }
    m_id = 0;
}

}    // namespace zck
