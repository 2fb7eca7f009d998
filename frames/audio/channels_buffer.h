// `ZChannelsBuffer`: sound as one buffer per channel.
#pragma once

#include <array>
#include <vector>

#include "frames/audio/sample_form.h"
#include "frames/memory/blob_holder.h"
#include "platform/com_ptr.h"
#include "platform/text.h"

namespace zck {

/// Up to 128 channels, which normally have one length. A channel that does not exist is stood in for by a block of zeros, so
/// that no caller has to ask. Not for two threads at once.
class ZChannelsBuffer final : public AutoObjBase<ZChannelsBuffer> {
public:
    static constexpr int32_t kChannelsMax = 128;

    ZChannelsBuffer() = default;

    void Clear() noexcept;
    void Swap(ZChannelsBuffer &other) noexcept;

    /// Adds empty channels or drops from the end; clamped to 0..128.
    HRESULT SetCount(int32_t n) noexcept;
    /// Makes the used size of every channel `bytes`; with -1 channels their count stays. A block that is large enough is kept
    /// with its bytes, unless they are zeroed. A failure empties the whole store.
    HRESULT Reserve(uint32_t bytes, int32_t channels, bool bZeroFill) noexcept;
    /// The same, and keeps what is there; only added bytes are zeroed.
    HRESULT Resize(uint32_t bytes, int32_t channels, bool bZeroFill) noexcept;

    int32_t Count() const noexcept { return static_cast<int32_t>(m_vecBlobs.size()); }
    /// Used bytes of channel 0, or 0.
    uint32_t Bytes() const noexcept { return BytesOf(0); }
    uint32_t BytesOf(int32_t index) const noexcept;
    /// How samples stand in the channels, as the last split left them.
    WorkForm Form() const noexcept { return m_form; }
    void SetForm(WorkForm form) noexcept { m_form = form; }

    /// The byte at an offset of a channel; null from its capacity on. A channel that does not exist: the stand-in, as long as
    /// channel 0, zeroed by each call, whatever the offset; null where there is no memory for it.
    uint8_t *Channel(int32_t index, uint32_t offset = 0) noexcept;
    /// The channels from `first` on, `count` of them (-1: all that follow), as an array of 128 that the next call overwrites.
    uint8_t *const *Pointers(uint32_t offset, int32_t first, int32_t count) noexcept;

    /// Splits an interleaved block of `bytes` bytes into channels of the form that `bits` have (-1: the record's), at most 128
    /// of them. With a map channel i takes the block's channel list[i], or silence where there is none. Without data the
    /// channels are silent. Bytes behind the last whole sample are 0.
    /// `VFW_E_INVALID_MEDIA_TYPE` for a record that is not strictly valid, and for bits that have no working form;
    /// `E_INVALIDARG` for negative bytes, and for a map without a number. The store then stays as it was.
    HRESULT FromInterleaved(const Z_AUD_PROPS *props, int64_t bytes, const void *data, TextView map, int32_t bits) noexcept;

    /// Splits behind what is there, in the record's own form. An empty store takes the record's channels.
    HRESULT Append(const Z_AUD_PROPS &props, int64_t samples, const void *data) noexcept;
    HRESULT CopyFrom(const ZChannelsBuffer &other) noexcept;

    /// Fewer channels, the others added into those that stay; more channels have no length. Integers saturate. False for a
    /// target below 1, or without memory.
    bool MixDown(int32_t target, bool bFloat) noexcept;

private:
    using Blob = CBLOBHolder<CHeapAlloc>;

    HRESULT Mapped(const Z_AUD_PROPS &props, const void *data, TextView map, uint32_t bytes, int64_t samples);
    HRESULT SplitWhole(const Z_AUD_PROPS &props, const void *data, int32_t channels, uint32_t bytes, int64_t samples);
    void SplitAt(const Z_AUD_PROPS &props, const void *data, uint32_t offset, int64_t samples) noexcept;
    void AddInto(int32_t target, int32_t source, bool bFloat) noexcept;

    std::array<uint8_t *, kChannelsMax> m_arrChannels{};
    std::vector<ComPtr<Blob>> m_vecBlobs;
    Blob m_spare;
    WorkForm m_form = WorkForm::None;
};

/// Writes the first `samples` samples of the channels into an interleaved block of the record's form, from the channels'
/// sample `first` on. Channels that the store lacks, samples that a channel lacks, and what lies behind stay untouched.
/// `VFW_E_INVALID_MEDIA_TYPE` where record or store have no form.
HRESULT Interleave(ZChannelsBuffer &channels, int64_t first, const Z_AUD_PROPS &props, int64_t samples, void *block) noexcept;

}    // namespace zck
