#include "imaging/files/image_frames.h"

#include <climits>
#include <cstdlib>
#include <utility>

#include "frames/media/pixel_format.h"
#include "imaging/files/bmp_reader.h"
#include "imaging/files/file_extension.h"
#include "imaging/files/hbitmap.h"
#include "platform/codec.h"
#include "platform/files.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr int64_t kSideMax = 32767;
constexpr int64_t kPicturesMax = 4096;
constexpr int64_t kDelayUnits = 100000;    // hundredths of a second in units of 100 ns
constexpr int64_t kDurationWithoutDelay = 400000;

/// Gathers what a codec decodes, within the limits.
class Gatherer final : public CodecSink {
public:
    Gatherer(bool firstOnly, ImageFrames &frames) : m_bFirstOnly(firstOnly), m_frames(frames) {}

    HRESULT Expect(int64_t pictures, int64_t width, int64_t height) override {
        if (m_bFirstOnly && pictures > 1) pictures = 1;
        if (pictures > kPicturesMax || width > kSideMax || height > kSideMax) return E_OUTOFMEMORY;
        return 4 * width * height * (pictures > 1 ? pictures : 1) > INT32_MAX ? E_OUTOFMEMORY : S_OK;
    }

    HRESULT Begin(int64_t width, int64_t height, uint16_t delay, uint8_t *&pixels) override {
        if (width > kSideMax || height > kSideMax || m_frames.size() >= kPicturesMax) return E_OUTOFMEMORY;
        if (width < 1 || height < 1) return E_FAIL;
        const int64_t bytes = 4 * width * height;
        if (m_nBytes + bytes > INT32_MAX) return E_OUTOFMEMORY;
        m_next.clear();
        ImageFrame &frame = m_next.emplace_back();
        if (FAILED(frame.pixels.Reserve(static_cast<uint32_t>(bytes)))) return E_OUTOFMEMORY;
        frame.fccType = eZFCC_ARGB32;
        frame.nWidth = frame.nRowPixels = static_cast<int32_t>(width);
        frame.nHeight = static_cast<int32_t>(height);
        frame.rtDuration = delay * kDelayUnits;
        frame.rtStart = m_rtStart;
        pixels = frame.pixels.Data();
        return S_OK;
    }

    bool Keep() override {
        const ImageFrame &frame = m_next.front();
        m_rtStart += frame.rtDuration != 0 ? frame.rtDuration : kDurationWithoutDelay;
        m_nBytes += frame.pixels.Size();
        m_frames.splice(m_frames.end(), m_next);
        return !m_bFirstOnly;
    }

private:
    const bool m_bFirstOnly;
    ImageFrames &m_frames;
    ImageFrames m_next;    // the picture that is being decoded
    int64_t m_nBytes = 0;
    int64_t m_rtStart = 0;
};

HRESULT RowsTake(const BITMAPINFOHEADER &header, uint8_t *pixels, ImageFrames &frames) {
    CBLOBHolder<CCoTaskAlloc> block;
    block.Attach(pixels, header.biSizeImage);
    ImageFrame &frame = frames.emplace_back();
    frame.pixels.Attach(block.Detach(), header.biSizeImage);
    frame.fccType = header.biBitCount == 32 ? eZFCC_ARGB32 : eZFCC_RGB24;
    frame.nWidth = frame.nRowPixels = header.biWidth;
    frame.nHeight = header.biHeight;
    return S_OK;
}

HRESULT BitmapLoad(HBITMAP bitmap, ImageFrames &frames) {
    BITMAPINFOHEADER header = {};
    HRESULT hr = ReadHbitmap(bitmap, &header, nullptr);
    if (SUCCEEDED(hr) && header.biBitCount != 24 && header.biBitCount != 32) hr = kVfwEInvalidMediaType;
    uint8_t *pixels = nullptr;
    if (SUCCEEDED(hr)) hr = ReadHbitmap(bitmap, &header, &pixels);
    return FAILED(hr) ? hr : RowsTake(header, pixels, frames);
}

/// A failure leaves the file to the codec.
HRESULT BmpLoad(TextView name, ImageFrames &frames) {
    BITMAPINFOHEADER header = {};
    uint8_t *pixels = nullptr;
    const HRESULT hr = ReadBmp(name, &header, &pixels);
    if (FAILED(hr)) return hr;
    if (header.biBitCount == 32) return RowsTake(header, pixels, frames);
    CoTaskMemFree(pixels);
    return E_FAIL;
}

HRESULT CodecLoad(TextView name, bool keepAlpha, bool firstOnly, ImageFrames &frames) {
    std::string file;
    const HRESULT read = FileRead(name, INT_MAX, file);
    if (FAILED(read)) return read == E_OUTOFMEMORY ? read : E_INVALIDARG;
    Gatherer gatherer(firstOnly, frames);
    const HRESULT hr = CodecDecode(file, keepAlpha, gatherer);
    return FAILED(hr) ? hr : frames.empty() ? E_FAIL : S_OK;
}

}    // namespace

HRESULT LoadImageFrames(TextView name, HBITMAP bitmap, bool bKeepAlpha, bool bFirstOnly, ImageFrames &frames) noexcept {
    frames.clear();
    const HRESULT hr = Guarded([&]() -> HRESULT {
        if (name.empty() || !FileExists(name)) return kErrorFileNotFound;
        if (bitmap != nullptr) return BitmapLoad(bitmap, frames);
        if (EqualNoCase(FileExtension(name), ZCK_TEXT(".bmp")) && SUCCEEDED(BmpLoad(name, frames))) return S_OK;
        return CodecLoad(name, bKeepAlpha, bFirstOnly, frames);
    });
    if (FAILED(hr)) frames.clear();
    return hr;
}

}    // namespace zck
