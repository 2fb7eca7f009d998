#include "frames/audio/wav_file.h"

#include <algorithm>

#include "frames/media/audio_props.h"
#include "platform/status.h"

namespace zck {
namespace {

bool SameFormat(const Z_AUD_PROPS &a, const Z_AUD_PROPS &b) {
    return a.nChannels == b.nChannels && a.nSamplesPerSec == b.nSamplesPerSec && a.nBitsPerSample == b.nBitsPerSample;
}

HRESULT WriteNumber(File &file, uint64_t at, uint32_t value) {
    const uint8_t bytes[4] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value >> 16),
                              static_cast<uint8_t>(value >> 24)};
    size_t put = 0;
    return file.WriteAt(at, bytes, sizeof(bytes), put);
}

HRESULT WriteHeader(File &file, const Z_AUD_PROPS &props, uint32_t dataBytes) {
    WavHeader header;
    size_t put = 0;
    const HRESULT hr = WavHeaderMake(props, dataBytes, header);
    return FAILED(hr) ? hr : file.WriteAt(0, header.bytes, header.size, put);
}

// An empty file of our own.
HRESULT Begin(File &file, const AudioBlock &audio, uint32_t headerSize, WavPlace &place) {
    place = {audio.props, headerSize - 4, headerSize, 0};
    const HRESULT hr = file.SetSize(0);
    return FAILED(hr) ? hr : WriteHeader(file, audio.props, 0);
}

// The header of a program that puts other chunks before the sound keeps them: only both sizes are set.
HRESULT SetSizes(File &file, const AudioBlock &audio, uint32_t headerSize, const WavPlace &place) {
    const auto bytes = static_cast<uint32_t>(place.dataBytes);
    if (place.dataAt == headerSize) return WriteHeader(file, audio.props, bytes);
    const HRESULT hr = WriteNumber(file, 4, static_cast<uint32_t>(place.dataAt + place.dataBytes - 8));
    return FAILED(hr) ? hr : WriteNumber(file, place.sizeAt, bytes);
}

// The sound first and the sizes after it, so that a file is whole at every moment.
HRESULT Append(File &file, const AudioBlock &audio, uint32_t headerSize, WavPlace &place) {
    if (place.dataAt + place.dataBytes + audio.size - 8 > UINT32_MAX) return kErrorFileTooLarge;
    size_t put = 0;
    const HRESULT written = file.WriteAt(place.dataAt + place.dataBytes, audio.data, audio.size, put);
    place.dataBytes += put;
    HRESULT hr = SetSizes(file, audio, headerSize, place);
    if (SUCCEEDED(hr)) hr = file.SetSize(place.dataAt + place.dataBytes);
    return FAILED(written) ? written : hr;
}

// As long as the other sound is, halves rounded away from zero.
int64_t CountLike(const AudioBlock &like, int32_t rate) {
    const int64_t samples = like.Samples();
    if (samples < 1) return 0;
    const int64_t product = samples * rate;
    return product / like.props.nSamplesPerSec + (product % like.props.nSamplesPerSec * 2 >= like.props.nSamplesPerSec ? 1 : 0);
}

}    // namespace

HRESULT WavSave(TextView name, bool bAppend, const AudioBlock &audio) noexcept {
    WavHeader header;
    HRESULT hr = WavHeaderMake(audio.props, 0, header);
    if (FAILED(hr)) return hr;
    File file;
    hr = file.Open(name, bAppend ? FileMode::Update : FileMode::Create);
    if (FAILED(hr)) return hr;
    WavPlace place = {};
    const bool goesOn = bAppend && SUCCEEDED(WavFind(file, place)) && SameFormat(place.props, audio.props);
    if (!goesOn) hr = Begin(file, audio, header.size, place);
    return FAILED(hr) ? hr : Append(file, audio, header.size, place);
}

HRESULT WavLoad(TextView name, int64_t first, int64_t count, const AudioBlock &like, Z_AUD_PROPS &props,
                CBLOBHolder<CHeapAlloc> &bytes) noexcept {
    if (first < 0 || count < 0) return E_INVALIDARG;
    File file;
    HRESULT hr = file.Open(name, FileMode::Read);
    WavPlace place = {};
    if (SUCCEEDED(hr)) hr = WavFind(file, place);
    if (FAILED(hr)) return hr;
    const int64_t left = AudioSamples(&place.props, static_cast<int64_t>(place.dataBytes)) - first;
    if (left <= 0) return kErrorHandleEof;
    if (count == 0) count = CountLike(like, place.props.nSamplesPerSec);
    const int64_t size = AudioBytesChecked(place.props, std::min(count, left));
    if (size < 0) return E_OUTOFMEMORY;
    props = place.props;
    if (size == 0) return S_OK;
    CBLOBHolder<CHeapAlloc> block;
    hr = block.Reserve(static_cast<uint32_t>(size));
    if (FAILED(hr)) return hr;
    size_t got = 0;
    const uint64_t from = place.dataAt + static_cast<uint64_t>(AudioBytes(&place.props, first));
    hr = file.ReadAt(from, block.Data(), block.Size(), got);
    if (SUCCEEDED(hr)) bytes.Attach(block.Detach(), static_cast<uint32_t>(size));
    return hr;
}

}    // namespace zck
