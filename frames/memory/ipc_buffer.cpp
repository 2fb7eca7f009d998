#include "frames/memory/ipc_buffer.h"

#include <cstring>
#include <limits>

#include "platform/status.h"

namespace zck {
namespace {

constexpr uint32_t kGrain = 512;    // sections are multiples of it
constexpr uint32_t kRounding = IPCBuffer::kHeaderBytes + kGrain - 1;

}    // namespace

HRESULT IPCBuffer::AllocBuffer(uint32_t n) noexcept {
    // Against the total, not the usable size.
    if (m_nTotal != 0 && m_nTotal >= n) return S_OK;
    CloseBuffer();
    if (n > std::numeric_limits<uint32_t>::max() - kRounding) return E_OUTOFMEMORY;
    const uint32_t total = (n + kRounding) & ~(kGrain - 1);
    HRESULT hr = CreateSection(total);
    if (SUCCEEDED(hr)) hr = m_section.Map();
    if (FAILED(hr)) {
        CloseBuffer();
        return hr;
    }
    std::memcpy(m_section.View(), &total, sizeof(total));
    m_nTotal = total;
    m_bFresh = true;
    return S_OK;
}

// The number starts from this object's address, which no other section of this process has; other processes may have it.
HRESULT IPCBuffer::CreateSection(uint32_t total) noexcept {
    m_nId = reinterpret_cast<uintptr_t>(this);
    HRESULT hr = m_section.Create(m_nId, total);
    while (hr == S_FALSE) hr = m_section.Create(++m_nId, total);
    return hr;
}

HRESULT IPCBuffer::OpenBuffer(uint64_t id) noexcept {
    CloseBuffer();
    HRESULT hr = m_section.Open(id);
    if (SUCCEEDED(hr)) hr = m_section.Map();
    if (SUCCEEDED(hr)) hr = ReadHeader();
    if (FAILED(hr)) {
        CloseBuffer();
        return hr;
    }
    m_nId = id;
    return S_OK;
}

// The stored size counts as long as the memory is really there: whoever made the section is not to be trusted.
HRESULT IPCBuffer::ReadHeader() noexcept {
    if (m_section.Size() < sizeof(m_nTotal)) return E_UNEXPECTED;
    uint32_t total = 0;
    std::memcpy(&total, m_section.View(), sizeof(total));
    if (total > m_section.Size()) return E_UNEXPECTED;
    m_nTotal = total;
    return S_OK;
}

void IPCBuffer::CloseBuffer() noexcept {
    m_section.Close();
    m_nTotal = 0;
    m_nId = 0;
    m_bFresh = false;
}

uint32_t IPCBuffer::DataSize(uint32_t offset) const noexcept {
    const uint32_t usable = m_nTotal > kHeaderBytes ? m_nTotal - kHeaderBytes : 0;
    return offset < usable ? usable - offset : 0;
}

uint8_t *IPCBuffer::DataPointer(uint32_t offset) const noexcept {
    if (m_section.View() == nullptr || offset > DataSize(0)) return nullptr;
    return m_section.View() + kHeaderBytes + offset;
}

}    // namespace zck
