#include "frames/object/frame_stored.h"

#include <algorithm>

#include "platform/copy.h"
#include "platform/status.h"

namespace zck {

PixelsIn::~PixelsIn() {
    if (m_buffer && !m_keeper) m_factory->BufferReturn(m_buffer.Detach());
}

HRESULT PixelsIn::Open(uint64_t section, uint32_t size) {
    ComPtr<IPCBuffer> opened;
    opened.Attach(new IPCBuffer);
    const HRESULT hr = opened->OpenBuffer(section);
    if (FAILED(hr)) return hr;
    if (opened->DataSize(m_start) < size) return E_UNEXPECTED;
    if (!m_keeper) return Copy(opened->DataPointer(m_start), size);
    m_buffer.Swap(opened);
    m_size = size;
    return S_OK;
}

// A pool at its limit can give a section and a failure; the section is what counts.
HRESULT PixelsIn::Copy(const uint8_t *pixels, uint32_t size) {
    if (!m_factory) return E_UNEXPECTED;
    const HRESULT hr = m_factory->BufferGet(static_cast<int32_t>(size), m_buffer.Put());
    if (!m_buffer) return FAILED(hr) ? hr : E_OUTOFMEMORY;
    if (m_buffer->DataSize(0) < size) {
        m_factory->BufferReturn(m_buffer.Detach());
        return E_OUTOFMEMORY;
    }
    CopyBytes(m_buffer->DataPointer(0), pixels, size);
    m_size = size;
    return S_OK;
}

// A section with a second owner does not go back to the pool, so the borrowed one is let go before its owner.
PixelsOut::~PixelsOut() {
    borrowed.Reset();
    if (source) {
        buffer.Reset();
        source.Reset();
    } else if (buffer && factory) {
        factory->BufferReturn(buffer.Detach());
    }
}

}    // namespace zck
