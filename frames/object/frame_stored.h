// The two ways of a frame's pixels while it is loaded: those that come and those that go.
#pragma once

#include "frames/memory/ipc_buffer.h"
#include "frames/stream/frame_load.h"
#include "frames/views/frames_i.h"
#include "platform/com_ptr.h"

namespace zck {

/// Pixels that come from a section: mapped where a keeper is given, otherwise copied into a section of the factory's pool.
class PixelsIn final : public PixelOpener {
public:
    /// `start`: bytes at the start of the section's pixels that belong to somebody else. Both pointers may be null.
    PixelsIn(IZFrames_I *factory, IUnknown *keeper, uint32_t start) : m_factory(factory), m_keeper(keeper), m_start(start) {}
    ~PixelsIn();
    PixelsIn(const PixelsIn &) = delete;
    PixelsIn &operator=(const PixelsIn &) = delete;

    HRESULT Open(uint64_t section, uint32_t size) override;

    /// Null when no pixels came.
    ComPtr<IPCBuffer> &Buffer() { return m_buffer; }
    /// Whose pixels are mapped; null for a copy.
    const ComPtr<IUnknown> &Keeper() const { return m_keeper; }
    /// The pixels lie from here on in the buffer.
    uint32_t Start() const { return m_keeper ? m_start : 0; }
    uint32_t Size() const { return m_size; }

private:
    HRESULT Copy(const uint8_t *pixels, uint32_t size);

    const ComPtr<IZFrames_I> m_factory;
    const ComPtr<IUnknown> m_keeper;
    const uint32_t m_start;
    ComPtr<IPCBuffer> m_buffer;
    uint32_t m_size = 0;
};

/// Pixels that a frame lets go. Its owner destroys it after leaving the frame's lock.
struct PixelsOut {
    ComPtr<IZFrames_I> factory;
    ComPtr<IUnknown> source;
    ComPtr<IPCBuffer> buffer;      ///< the pool's; with a source it was opened for this frame alone
    ComPtr<IPCBuffer> borrowed;    ///< the source's section, held against reuse

    PixelsOut() = default;
    PixelsOut(const PixelsOut &) = delete;
    PixelsOut &operator=(const PixelsOut &) = delete;
    ~PixelsOut();
};

}    // namespace zck
