#include "platform/codec.h"

#include <gdiplus.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "platform/byte_stream.h"
#include "platform/codec_facts.h"
#include "platform/codec_rows.h"
#include "platform/com_ptr.h"
#include "platform/library.h"
#include "platform/palette.h"
#include "platform/status.h"
#include "platform/text.h"

namespace zck {
namespace {

namespace Gdip = Gdiplus::DllExports;

struct Api {
    bool bThere = false;
    decltype(&Gdiplus::GdiplusStartup) start;
    decltype(&Gdip::GdipCreateBitmapFromStream) fromStream;
    decltype(&Gdip::GdipCreateBitmapFromScan0) fromScan0;
    decltype(&Gdip::GdipDisposeImage) dispose;
    decltype(&Gdip::GdipImageGetFrameDimensionsCount) dimensions;
    decltype(&Gdip::GdipImageGetFrameDimensionsList) dimensionList;
    decltype(&Gdip::GdipImageGetFrameCount) frameCount;
    decltype(&Gdip::GdipImageSelectActiveFrame) select;
    decltype(&Gdip::GdipGetPropertyItemSize) propertySize;
    decltype(&Gdip::GdipGetPropertyItem) property;
    decltype(&Gdip::GdipGetImageWidth) width;
    decltype(&Gdip::GdipGetImageHeight) height;
    decltype(&Gdip::GdipBitmapLockBits) lock;
    decltype(&Gdip::GdipBitmapUnlockBits) unlock;
    decltype(&Gdip::GdipSetImagePalette) setPalette;
    decltype(&Gdip::GdipGetImageEncodersSize) encodersSize;
    decltype(&Gdip::GdipGetImageEncoders) encoders;
    decltype(&Gdip::GdipSaveImageToStream) save;
};

Api Load() {
    Api api = {};
    void *library = LibraryLoad("gdiplus.dll");
    const bool bound =
        LibraryBind(library, "GdiplusStartup", api.start) &&
        LibraryBind(library, "GdipCreateBitmapFromStream", api.fromStream) &&
        LibraryBind(library, "GdipCreateBitmapFromScan0", api.fromScan0) &&
        LibraryBind(library, "GdipDisposeImage", api.dispose) &&
        LibraryBind(library, "GdipImageGetFrameDimensionsCount", api.dimensions) &&
        LibraryBind(library, "GdipImageGetFrameDimensionsList", api.dimensionList) &&
        LibraryBind(library, "GdipImageGetFrameCount", api.frameCount) &&
        LibraryBind(library, "GdipImageSelectActiveFrame", api.select) &&
        LibraryBind(library, "GdipGetPropertyItemSize", api.propertySize) &&
        LibraryBind(library, "GdipGetPropertyItem", api.property) && LibraryBind(library, "GdipGetImageWidth", api.width) &&
        LibraryBind(library, "GdipGetImageHeight", api.height) && LibraryBind(library, "GdipBitmapLockBits", api.lock) &&
        LibraryBind(library, "GdipBitmapUnlockBits", api.unlock) &&
        LibraryBind(library, "GdipSetImagePalette", api.setPalette) &&
        LibraryBind(library, "GdipGetImageEncodersSize", api.encodersSize) &&
        LibraryBind(library, "GdipGetImageEncoders", api.encoders) && LibraryBind(library, "GdipSaveImageToStream", api.save);
    if (!bound) return api;
    // It is never shut down: that is not allowed where a library is unloaded.
    ULONG_PTR token = 0;
    Gdiplus::GdiplusStartupInput input;
    api.bThere = api.start(&token, &input, nullptr) == Gdiplus::Ok;
    return api;
}

const Api &Service() {
    static const Api s_api = Load();
    return s_api;
}

struct Dispose {
    void operator()(Gdiplus::GpImage *image) const { Service().dispose(image); }
};
using BitmapPtr = std::unique_ptr<Gdiplus::GpBitmap, Dispose>;

// A stream of our own: some decoders go behind the end by what a damaged file says, and some systems' streams read there.
HRESULT StreamOf(std::string_view bytes, ComPtr<IStream> &stream) {
    HRESULT hr = ByteStreamCreate(stream.Put());
    ULONG put = 0;
    if (SUCCEEDED(hr)) hr = stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &put);
    if (SUCCEEDED(hr) && put != bytes.size()) hr = E_OUTOFMEMORY;
    return SUCCEEDED(hr) ? stream->Seek({}, STREAM_SEEK_SET, nullptr) : hr;
}

HRESULT BytesOf(IStream *stream, std::string &bytes) {
    STATSTG facts = {};
    HRESULT hr = stream->Stat(&facts, STATFLAG_NONAME);
    if (SUCCEEDED(hr)) hr = stream->Seek({}, STREAM_SEEK_SET, nullptr);
    if (FAILED(hr) || facts.cbSize.QuadPart > 0x7FFFFFFF) return E_FAIL;
    bytes.resize(static_cast<size_t>(facts.cbSize.QuadPart));
    ULONG got = 0;
    hr = stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &got);
    return SUCCEEDED(hr) && got == bytes.size() ? S_OK : E_FAIL;
}

/// Pictures of the first dimension that the image has, whatever it is called; at least one.
UINT FrameCount(Gdiplus::GpImage *image, GUID &dimension) {
    UINT dimensions = 0;
    UINT count = 0;
    if (Service().dimensions(image, &dimensions) != Gdiplus::Ok || dimensions == 0) return 1;
    std::vector<GUID> list(dimensions);
    if (Service().dimensionList(image, list.data(), dimensions) != Gdiplus::Ok) return 1;
    dimension = list[0];
    if (Service().frameCount(image, &dimension, &count) != Gdiplus::Ok) return 1;
    return std::max(count, 1U);
}

/// In hundredths of a second. Files have 16 bits for each; the service makes more of some of them.
std::vector<uint16_t> Delays(Gdiplus::GpImage *image) {
    constexpr PROPID kFrameDelay = 0x5100;
    UINT size = 0;
    if (Service().propertySize(image, kFrameDelay, &size) != Gdiplus::Ok || size < sizeof(Gdiplus::PropertyItem)) return {};
    std::vector<std::max_align_t> block(size / sizeof(std::max_align_t) + 1);
    auto *item = reinterpret_cast<Gdiplus::PropertyItem *>(block.data());
    if (Service().property(image, kFrameDelay, size, item) != Gdiplus::Ok || item->value == nullptr) return {};
    std::vector<uint16_t> delays(item->length / sizeof(uint32_t));
    for (size_t i = 0; i < delays.size(); ++i) {
        uint32_t delay = 0;
        std::memcpy(&delay, static_cast<const uint8_t *>(item->value) + sizeof(delay) * i, sizeof(delay));
        delays[i] = static_cast<uint16_t>(delay);
    }
    return delays;
}

HRESULT FrameGive(Gdiplus::GpBitmap *image, uint16_t delay, bool straight, CodecSink &sink, bool &wanted) {
    UINT width = 0;
    UINT height = 0;
    if (Service().width(image, &width) != Gdiplus::Ok || Service().height(image, &height) != Gdiplus::Ok) return S_OK;
    uint8_t *pixels = nullptr;
    const HRESULT hr = sink.Begin(width, height, delay, pixels);
    if (FAILED(hr)) return hr;
    const Gdiplus::Rect whole(0, 0, static_cast<INT>(width), static_cast<INT>(height));
    Gdiplus::BitmapData data = {};
    const auto status = Service().lock(image, &whole, Gdiplus::ImageLockModeRead,
                                       straight ? PixelFormat32bppARGB : PixelFormat32bppPARGB, &data);
    if (status == Gdiplus::OutOfMemory) return E_OUTOFMEMORY;
    if (status != Gdiplus::Ok) return S_OK;
    const size_t rowBytes = size_t{4} * width;
    for (int64_t y = height; y > 0; --y, pixels += rowBytes)
        std::memcpy(pixels, static_cast<const uint8_t *>(data.Scan0) + (y - 1) * data.Stride, rowBytes);
    Service().unlock(image, &data);
    wanted = sink.Keep();
    return S_OK;
}

HRESULT ImageGive(Gdiplus::GpBitmap *image, bool straight, CodecSink &sink) {
    GUID dimension = {};
    const UINT count = FrameCount(image, dimension);
    HRESULT hr = sink.Expect(count, 0, 0);
    const std::vector<uint16_t> delays = Delays(image);
    bool wanted = true;
    for (UINT i = 0; i < count && wanted && SUCCEEDED(hr); ++i) {
        if (count > 1 && Service().select(image, &dimension, i) != Gdiplus::Ok) continue;
        hr = FrameGive(image, i < delays.size() ? delays[i] : uint16_t{0}, straight, sink, wanted);
    }
    return hr;
}

const wchar_t *MimeType(CodecKind kind) {
    switch (kind) {
        case CodecKind::Png:
            return L"image/png";
        case CodecKind::Gif:
            return L"image/gif";
        case CodecKind::Tiff:
            return L"image/tiff";
        case CodecKind::Jpeg:
            return L"image/jpeg";
        default:
            return L"image/bmp";
    }
}

bool EncoderFind(CodecKind kind, CLSID &id) {
    UINT count = 0;
    UINT size = 0;
    if (!Service().bThere || Service().encodersSize(&count, &size) != Gdiplus::Ok || size == 0) return false;
    std::vector<std::max_align_t> block(size / sizeof(std::max_align_t) + 1);
    auto *all = reinterpret_cast<Gdiplus::ImageCodecInfo *>(block.data());
    if (Service().encoders(count, size, all) != Gdiplus::Ok) return false;
    const auto *found = std::find_if(all, all + count, [kind](const Gdiplus::ImageCodecInfo &info) {
        return info.MimeType != nullptr && TextView(info.MimeType) == MimeType(kind);
    });
    if (found == all + count) return false;
    id = found->Clsid;
    return true;
}

BitmapPtr BitmapOf(INT width, INT height, INT stride, Gdiplus::PixelFormat format, const uint8_t *top) {
    Gdiplus::GpBitmap *bitmap = nullptr;
    if (Service().fromScan0(width, height, stride, format, const_cast<BYTE *>(top), &bitmap) != Gdiplus::Ok) return nullptr;
    return BitmapPtr(bitmap);
}

/// Pixels with alpha are copied: where it is 0 some services keep the colour, and there is none.
class ColourPicture {
public:
    explicit ColourPicture(const CodecSource &source) {
        Gdiplus::PixelFormat format = source.pixels == CodecPixels::Rgb32 ? PixelFormat32bppRGB : PixelFormat24bppRGB;
        auto stride = static_cast<INT>(source.stride);
        const uint8_t *top = source.top;
        if (source.pixels == CodecPixels::Premultiplied) {
            PixelsCopy(source);
            format = PixelFormat32bppPARGB;
            stride = source.width * 4;
            top = reinterpret_cast<const uint8_t *>(m_pixels.data());
        }
        m_bitmap = BitmapOf(source.width, source.height, stride, format, top);
    }
    Gdiplus::GpBitmap *get() const { return m_bitmap.get(); }

private:
    void PixelsCopy(const CodecSource &source) {
        const auto width = static_cast<size_t>(source.width);
        m_pixels.resize(width * static_cast<size_t>(source.height));
        for (int32_t y = 0; y < source.height; ++y) {
            std::memcpy(m_pixels.data() + static_cast<size_t>(y) * width, source.top + y * source.stride, 4 * width);
        }
        for (uint32_t &pixel : m_pixels) {
            if (pixel >> 24 == 0) pixel = 0;
        }
    }

    std::vector<uint32_t> m_pixels;
    BitmapPtr m_bitmap;    // goes before its pixels
};

/// A picture that has its palette already: some encoders take others, say success and write a file without a picture.
class IndexedPicture {
public:
    explicit IndexedPicture(const CodecSource &source) {
        std::vector<uint32_t> pixels;
        pixels.reserve(static_cast<size_t>(source.width) * static_cast<size_t>(source.height));
        for (int32_t y = 0; y < source.height; ++y) {
            for (int32_t x = 0; x < source.width; ++x) {
                const CodecPixel pixel = CodecPixelAt(source, x, y);
                pixels.push_back(static_cast<uint32_t>(pixel.red << 16 | pixel.green << 8 | pixel.blue));
            }
        }
        const PalettePicture picture = PaletteMake(pixels);
        const int32_t stride = (source.width + 3) / 4 * 4;
        m_rows.resize(static_cast<size_t>(stride) * static_cast<size_t>(source.height));
        for (int32_t y = 0; y < source.height; ++y) {
            std::memcpy(m_rows.data() + int64_t{y} * stride, picture.indices.data() + int64_t{y} * source.width,
                        static_cast<size_t>(source.width));
        }
        m_bitmap = BitmapOf(source.width, source.height, stride, PixelFormat8bppIndexed, m_rows.data());
        if (m_bitmap) PaletteSet(picture.colours);
    }
    Gdiplus::GpBitmap *get() const { return m_bitmap.get(); }

private:
    void PaletteSet(const std::vector<uint32_t> &colours) {
        constexpr size_t kColours = 256;
        std::vector<uint32_t> block(2 + kColours);    // two numbers, then the colours
        auto *palette = reinterpret_cast<Gdiplus::ColorPalette *>(block.data());
        palette->Flags = 0;
        palette->Count = kColours;
        for (size_t i = 0; i < kColours; ++i) block[2 + i] = 0xFF000000U | (i < colours.size() ? colours[i] : 0);
        if (Service().setPalette(m_bitmap.get(), palette) != Gdiplus::Ok) m_bitmap.reset();
    }

    std::vector<uint8_t> m_rows;
    BitmapPtr m_bitmap;    // goes before its rows
};

HRESULT ImageSave(Gdiplus::GpImage *image, const CLSID &encoder, std::string &file) {
    ComPtr<IStream> stream;
    if (image == nullptr || FAILED(ByteStreamCreate(stream.Put()))) return E_FAIL;
    if (Service().save(image, stream.get(), &encoder, nullptr) != Gdiplus::Ok) return E_FAIL;
    return BytesOf(stream.get(), file);
}

}    // namespace

bool CodecEncodes(CodecKind kind) noexcept {
    CLSID id = {};
    return SUCCEEDED(Guarded([&] { return EncoderFind(kind, id) ? S_OK : E_FAIL; }));
}

HRESULT CodecEncode(CodecKind kind, const CodecSource &source, std::string &file) noexcept {
    const HRESULT hr = Guarded([&]() -> HRESULT {
        file.clear();
        CLSID encoder = {};
        if (!EncoderFind(kind, encoder)) return E_FAIL;
        if (kind == CodecKind::Gif) return ImageSave(IndexedPicture(source).get(), encoder, file);
        return ImageSave(ColourPicture(source).get(), encoder, file);
    });
    return FAILED(hr) ? E_FAIL : S_OK;
}

HRESULT CodecDecode(std::string_view file, bool straight, CodecSink &sink) noexcept {
    return Guarded([&]() -> HRESULT {
        if (!Service().bThere) return E_INVALIDARG;
        if (const auto facts = CodecFactsOf(file)) {
            const HRESULT hr = CodecFactsAsk(*facts, sink);
            if (FAILED(hr)) return hr;
        }
        ComPtr<IStream> stream;
        const HRESULT hr = StreamOf(file, stream);
        if (FAILED(hr)) return hr;
        Gdiplus::GpBitmap *image = nullptr;
        if (Service().fromStream(stream.get(), &image) != Gdiplus::Ok || image == nullptr) return E_INVALIDARG;
        const BitmapPtr owned(image);
        return ImageGive(image, straight, sink);
    });
}

}    // namespace zck
