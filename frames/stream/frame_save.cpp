#include "frames/stream/frame_save.h"

#include <cstring>

#include "platform/copy.h"
#include "platform/memory_stream.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr uint32_t kGrain = 32;    // sizes of blocks are multiples of it

class ByteSink {
public:
    virtual HRESULT Put(const void *bytes, uint32_t count) = 0;
    /// The part of a text that is written.
    virtual TextView Written(const Text &text) const = 0;

protected:
    ~ByteSink() = default;
};

/// Counts, and writes where there is a block.
class BlockSink final : public ByteSink {
public:
    explicit BlockSink(uint8_t *block) : m_at(block) {}
    uint64_t Total() const { return m_total; }

    HRESULT Put(const void *bytes, uint32_t count) override {
        if (m_at != nullptr) {
            CopyBytes(m_at, bytes, count);
            m_at += count;
        }
        m_total += count;
        return S_OK;
    }
    TextView Written(const Text &text) const override {
        return {text.c_str(), std::char_traits<OLECHAR>::length(text.c_str())};
    }

private:
    uint8_t *m_at;
    uint64_t m_total = 0;
};

class StreamSink final : public ByteSink {
public:
    explicit StreamSink(IStream *stream) : m_stream(stream) {}

    HRESULT Put(const void *bytes, uint32_t count) override {
        ULONG put = 0;
        const HRESULT hr = m_stream->Write(bytes, count, &put);
        if (FAILED(hr)) return hr;
        return put == count ? S_OK : kStgMediumFull;
    }
    TextView Written(const Text &text) const override { return text; }

private:
    IStream *const m_stream;
};

/// Counts what a stream takes.
class StreamCounter final : public ByteSink {
public:
    uint64_t Total() const { return m_total; }
    HRESULT Put(const void *, uint32_t count) override {
        m_total += count;
        return S_OK;
    }
    TextView Written(const Text &text) const override { return text; }

private:
    uint64_t m_total = 0;
};

// Numbers stand in the form as they stand in the memory of the machines that this library runs on: low byte first.
void PutNumber(ByteSink &sink, uint32_t value) { sink.Put(&value, sizeof(value)); }

// `text` is followed by a zero or was cut before one.
void PutText(ByteSink &sink, const Text &text) {
    const TextView written = sink.Written(text);
    if (written.empty()) {
        PutNumber(sink, 0);
        return;
    }
    const auto bytes = static_cast<uint32_t>(sizeof(OLECHAR) * (written.size() + 1));
    PutNumber(sink, bytes);
    sink.Put(written.data(), bytes);
}

// Field by field, so that what lies between the fields is 0.
void PutTime(ByteSink &sink, const Z_TIME &time) {
    uint8_t bytes[kTimeBytes] = {};
    std::memcpy(bytes, &time, offsetof(Z_TIME, eFFlags) + sizeof(time.eFFlags));
    sink.Put(bytes, sizeof(bytes));
}

void PutProps(ByteSink &sink, const FrameContent &content) {
    constexpr size_t kAspectEnd = offsetof(Z_VID_PROPS, nAspectY) + sizeof(int16_t);
    constexpr size_t kRate = offsetof(Z_VID_PROPS, dblRate);
    uint8_t bytes[kPropsBytes] = {};
    const auto *props = reinterpret_cast<const uint8_t *>(&content.props);
    if (ChoosesVideo(content.flags)) {
        std::memcpy(bytes, props, kAspectEnd);
        std::memcpy(bytes + kRate, props + kRate, sizeof(Z_VID_PROPS) - kRate);
    }
    if (ChoosesAudio(content.flags)) {
        constexpr size_t kAudio = offsetof(Z_AV_PROPS, audProps);
        std::memcpy(bytes + kAudio, props + kAudio, offsetof(Z_AV_PROPS, bLocked) - kAudio);
    }
    sink.Put(bytes, sizeof(bytes));
}

HRESULT PutMedia(ByteSink &sink, const FrameContent &content) {
    const uint64_t section = ChoosesVideo(content.flags) ? content.section : 0;
    const uint32_t audioBytes = ChoosesAudio(content.flags) ? content.audioBytes : 0;
    PutNumber(sink, ChoosesVideo(content.flags) ? content.videoBytes : 0);
    sink.Put(&section, sizeof(section));
    PutNumber(sink, audioBytes);
    const HRESULT hr = audioBytes != 0 ? sink.Put(content.audio, audioBytes) : S_OK;
    if (FAILED(hr)) return hr;
    PutTime(sink, content.time);
    PutProps(sink, content);
    return S_OK;
}

HRESULT PutNamed(ByteSink &sink, const NamedMaps &named) {
    PutNumber(sink, static_cast<uint32_t>(named.data.Count()));
    for (size_t i = 0; i < named.data.Count(); ++i) {
        const DataBlob &blob = *named.data.At(i);
        PutText(sink, named.data.Name(i));
        PutNumber(sink, blob.Size());
        const HRESULT hr = sink.Put(blob.Data(), ValueBytes(blob));
        if (FAILED(hr)) return hr;
    }
    PutNumber(sink, static_cast<uint32_t>(named.texts.Count()));
    for (size_t i = 0; i < named.texts.Count(); ++i) {
        PutText(sink, named.texts.Name(i));
        PutText(sink, named.texts.At(i));
    }
    return S_OK;
}

HRESULT PutContent(ByteSink &sink, const FrameContent &content) {
    const bool media = ChoosesMedia(content.flags);
    PutNumber(sink, media ? 1 : 0);
    if (media) {
        const HRESULT hr = PutMedia(sink, content);
        if (FAILED(hr)) return hr;
    }
    PutNumber(sink, ChoosesData(content.flags) ? 1 : 0);
    return ChoosesData(content.flags) ? PutNamed(sink, *content.named) : S_OK;
}

/// Objects in their marshaled form. Those that were not written are given up.
class MarshaledObjects {
public:
    explicit MarshaledObjects(const ObjectMap &objects) {
        for (size_t i = 0; MarshalingExists() && i < objects.Count(); ++i) Add(objects.Name(i), objects.At(i).get());
    }
    ~MarshaledObjects() {
        for (const Entry &entry : m_entries) {
            if (Rewind(entry)) ObjectMarshalDrop(entry.stream.get());
        }
    }
    MarshaledObjects(const MarshaledObjects &) = delete;
    MarshaledObjects &operator=(const MarshaledObjects &) = delete;

    void Write(ByteSink &sink, IStream *to) {
        PutNumber(sink, static_cast<uint32_t>(m_entries.size()));
        for (const Entry &entry : m_entries) {
            PutText(sink, entry.name);
            if (Rewind(entry)) entry.stream->CopyTo(to, entry.bytes, nullptr, nullptr);
        }
        m_entries.clear();
    }

private:
    struct Entry {
        Text name;
        ComPtr<IStream> stream;
        ULARGE_INTEGER bytes = {};
    };

    void Add(const Text &name, IUnknown *object) {
        Entry entry;
        entry.name = name;
        m_entries.reserve(m_entries.size() + 1);
        if (FAILED(MemoryStreamCreate(entry.stream.Put()))) return;
        if (FAILED(ObjectMarshal(entry.stream.get(), object))) return;
        if (FAILED(entry.stream->Seek({}, STREAM_SEEK_CUR, &entry.bytes))) return;
        m_entries.push_back(std::move(entry));
    }

    static bool Rewind(const Entry &entry) { return SUCCEEDED(entry.stream->Seek({}, STREAM_SEEK_SET, nullptr)); }

    std::vector<Entry> m_entries;
};

}    // namespace

HRESULT FrameSaveBlock(const FrameContent &content, int32_t &size, void *&block) {
    size = 0;
    block = nullptr;
    BlockSink counter(nullptr);
    PutContent(counter, content);
    const uint64_t total = (counter.Total() + kGrain - 1) / kGrain * kGrain;
    if (total > INT32_MAX) return E_OUTOFMEMORY;
    auto *bytes = static_cast<uint8_t *>(CoTaskMemAlloc(static_cast<size_t>(total)));
    if (bytes == nullptr) return E_OUTOFMEMORY;
    BlockSink sink(bytes);
    PutContent(sink, content);
    std::memset(bytes + sink.Total(), 0, static_cast<size_t>(total - sink.Total()));
    size = static_cast<int32_t>(total);
    block = bytes;
    return S_OK;
}

HRESULT FrameSaveStream(const FrameContent &content, IStream *stream) {
    StreamSink sink(stream);
    HRESULT hr = sink.Put(kFrameMark, sizeof(kFrameMark));
    if (SUCCEEDED(hr)) hr = PutContent(sink, content);
    if (FAILED(hr) || !ChoosesData(content.flags)) return hr;
    MarshaledObjects(content.named->objects).Write(sink, stream);
    return S_OK;
}

uint64_t FrameStreamBytes(const FrameContent &content) {
    StreamCounter counter;
    PutContent(counter, content);
    return sizeof(kFrameMark) + counter.Total();
}

}    // namespace zck
