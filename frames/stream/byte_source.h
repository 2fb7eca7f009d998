// Where a stored frame is read from: a block of memory or a stream.
#pragma once

#include "frames/memory/blob_holder.h"
#include "platform/status.h"
#include "platform/text.h"

namespace zck {

/// Most bytes that the count of a text may tell.
constexpr uint32_t kTextBytesMax = 0x100000;

/// Bytes one after the other. The two forms differ in what they make of an end that comes too early: a stream ends the load
/// with a failure, a block goes on with what there is.
class ByteSource {
public:
    /// All of `count` bytes, or `kErrorHandleEof` after as many as there are, or a failure of the stream.
    virtual HRESULT Read(void *to, uint32_t count) = 0;
    /// The same for a field that need not be whole in a block: bytes that are not there stay as they are in `to`.
    virtual HRESULT ReadField(void *to, uint32_t count) = 0;
    virtual HRESULT Skip(uint32_t count) = 0;
    /// What may be asked for of a value of which `count` bytes are said to follow, and which need not be whole.
    virtual uint32_t Bounded(uint32_t count) const = 0;
    /// All of `count` bytes in a new block. Memory follows the bytes that are really there. `E_OUTOFMEMORY`
    /// above 0x7FFFFFFF bytes. `to` is empty after a failure.
    virtual HRESULT ReadBlock(uint32_t count, CBLOBHolder<CHeapAlloc> &to) = 0;
    /// The result of a load that ends with this failure of an entry.
    virtual HRESULT EndOf(HRESULT failure) const = 0;

    /// A 32-bit count of bytes and as many bytes of text with a zero at their end; a count of 0 is the empty text.
    /// `E_ACCESSDENIED` for a count above `kTextBytesMax`, `E_FAIL` for what is no such text; the source stands where the text
    /// began then, and `text` is unchanged. Throws `std::bad_alloc`.
    HRESULT ReadText(Text &text);

protected:
    ~ByteSource() = default;
    /// Bytes read so far, and the way back.
    virtual uint64_t Position() const = 0;
    virtual void Back(uint64_t position) = 0;

private:
    HRESULT ReadTextHere(Text &text);
};

class BlockSource final : public ByteSource {
public:
    BlockSource(const uint8_t *block, uint32_t size) : m_at(block), m_size(size) {}
    HRESULT Read(void *to, uint32_t count) override;
    HRESULT ReadField(void *to, uint32_t count) override;
    HRESULT Skip(uint32_t count) override;
    uint32_t Bounded(uint32_t count) const override;
    HRESULT ReadBlock(uint32_t count, CBLOBHolder<CHeapAlloc> &to) override;
    HRESULT EndOf(HRESULT failure) const override { return failure == E_OUTOFMEMORY ? failure : S_OK; }

private:
    uint64_t Position() const override { return m_used; }
    void Back(uint64_t position) override { m_used = static_cast<uint32_t>(position); }
    uint32_t Left() const { return m_size - m_used; }

    const uint8_t *const m_at;
    const uint32_t m_size;
    uint32_t m_used = 0;
};

class StreamSource final : public ByteSource {
public:
    explicit StreamSource(IStream *stream) : m_stream(stream) {}
    HRESULT Read(void *to, uint32_t count) override;
    HRESULT ReadField(void *to, uint32_t count) override { return Read(to, count); }
    HRESULT Skip(uint32_t count) override;
    uint32_t Bounded(uint32_t count) const override { return count; }
    HRESULT ReadBlock(uint32_t count, CBLOBHolder<CHeapAlloc> &to) override;
    HRESULT EndOf(HRESULT failure) const override { return failure; }
    IStream *Stream() const { return m_stream; }

private:
    uint64_t Position() const override { return m_read; }
    void Back(uint64_t position) override;
    bool Holds(uint32_t count);
    HRESULT ReadGrowing(uint32_t count, CBLOBHolder<CHeapAlloc> &to);

    IStream *const m_stream;
    uint64_t m_read = 0;
};

}    // namespace zck
