#include "frames/stream/frame_load.h"

#include <cstring>

#include "frames/stream/byte_source.h"
#include "platform/memory_stream.h"

namespace zck {
namespace {

template <class Number>
HRESULT ReadNumber(ByteSource &source, Number &number) {
    number = 0;
    return source.ReadField(&number, sizeof(number));
}

HRESULT LoadVideo(ByteSource &source, PixelOpener &pixels, FrameLoad &load) {
    uint32_t size = 0;
    uint64_t section = 0;
    HRESULT hr = ReadNumber(source, size);
    if (SUCCEEDED(hr)) hr = ReadNumber(source, section);
    if (FAILED(hr) || !ChoosesVideo(load.flags)) return hr;
    load.bVideo = true;
    return size != 0 && section != 0 ? pixels.Open(section, size) : S_OK;
}

HRESULT LoadAudio(ByteSource &source, FrameLoad &load) {
    uint32_t size = 0;
    HRESULT hr = ReadNumber(source, size);
    if (FAILED(hr)) return hr;
    if (!ChoosesAudio(load.flags)) return size != 0 ? source.Skip(size) : S_OK;
    size = source.Bounded(size);
    if (size != 0) hr = source.ReadBlock(size, load.audio);
    load.bAudio = SUCCEEDED(hr);
    return hr;
}

HRESULT LoadMedia(ByteSource &source, PixelOpener &pixels, FrameLoad &load) {
    HRESULT hr = LoadVideo(source, pixels, load);
    if (SUCCEEDED(hr)) hr = LoadAudio(source, load);
    if (FAILED(hr)) return hr;
    Z_TIME time = load.time;
    hr = source.ReadField(&time, kTimeBytes);
    if (FAILED(hr)) return hr;
    load.time = time;
    load.bTime = true;
    hr = source.ReadField(&load.props, kPropsBytes);
    load.bProps = SUCCEEDED(hr);
    return hr;
}

HRESULT LoadDataEntry(ByteSource &source, DataMap &map) {
    Text name;
    uint32_t size = 0;
    HRESULT hr = source.ReadText(name);
    if (SUCCEEDED(hr)) hr = source.Read(&size, sizeof(size));
    if (FAILED(hr)) return hr;
    DataBlobPtr blob;
    blob.Attach(new DataBlob);
    const uint32_t bytes = size != 0 ? size : kInlineBytes;
    hr = source.ReadBlock(bytes, *blob);
    if (SUCCEEDED(hr)) hr = blob->SetSize(size);
    if (SUCCEEDED(hr)) map.Set(name, std::move(blob));
    return hr;
}

HRESULT LoadTextEntry(ByteSource &source, TextMap &map) {
    Text name;
    Text text;
    HRESULT hr = source.ReadText(name);
    if (SUCCEEDED(hr)) hr = source.ReadText(text);
    if (SUCCEEDED(hr)) map.Set(name, std::move(text));
    return hr;
}

// As many entries as the count tells, up to the first that is not whole.
template <class Map>
HRESULT LoadEntries(ByteSource &source, HRESULT (*load)(ByteSource &, Map &), Map &map) {
    uint32_t count = 0;
    HRESULT hr = ReadNumber(source, count);
    for (; SUCCEEDED(hr) && count != 0; --count) hr = load(source, map);
    return hr;
}

HRESULT LoadNamed(ByteSource &source, FrameLoad &load) {
    HRESULT hr = LoadEntries(source, LoadDataEntry, load.named.data);
    if (SUCCEEDED(hr)) hr = LoadEntries(source, LoadTextEntry, load.named.texts);
    return FAILED(hr) ? source.EndOf(hr) : hr;
}

// `S_FALSE` when no data follow, or none that were chosen.
HRESULT LoadContent(ByteSource &source, PixelOpener &pixels, FrameLoad &load) {
    uint32_t media = 0;
    HRESULT hr = source.Read(&media, sizeof(media));
    if (SUCCEEDED(hr) && media != 0 && ChoosesMedia(load.flags)) hr = LoadMedia(source, pixels, load);
    uint32_t data = 0;
    if (SUCCEEDED(hr)) hr = ReadNumber(source, data);
    if (FAILED(hr)) return hr;
    return data != 0 && ChoosesData(load.flags) ? LoadNamed(source, load) : S_FALSE;
}

// An object that does not come is passed over: the stream goes on wherever it stands then.
HRESULT LoadObjects(StreamSource &source, ObjectMap &map) {
    uint32_t count = 0;
    HRESULT hr = ReadNumber(source, count);
    if (FAILED(hr) || !MarshalingExists()) return hr;
    for (; count != 0; --count) {
        Text name;
        hr = source.ReadText(name);
        if (FAILED(hr)) return hr;
        ComPtr<IUnknown> object;
        if (SUCCEEDED(ObjectUnmarshal(source.Stream(), object.Put()))) map.Set(name, std::move(object));
    }
    return S_OK;
}

}    // namespace

HRESULT FrameLoadBlock(const uint8_t *block, uint32_t size, PixelOpener &pixels, FrameLoad &load) {
    return Guarded([&] {
        BlockSource source(block, size);
        const HRESULT hr = LoadContent(source, pixels, load);
        return hr == S_FALSE ? S_OK : hr;
    });
}

HRESULT FrameLoadStream(IStream *stream, PixelOpener &pixels, FrameLoad &load) {
    return Guarded([&] {
        StreamSource source(stream);
        uint8_t mark[sizeof(kFrameMark)] = {};
        HRESULT hr = source.Read(mark, sizeof(mark));
        if (hr == kErrorHandleEof) return E_FAIL;
        if (FAILED(hr)) return hr;
        if (std::memcmp(mark, kFrameMark, sizeof(mark)) != 0) return E_FAIL;
        hr = LoadContent(source, pixels, load);
        if (hr == S_FALSE) return S_OK;
        return SUCCEEDED(hr) ? LoadObjects(source, load.named.objects) : hr;
    });
}

}    // namespace zck
