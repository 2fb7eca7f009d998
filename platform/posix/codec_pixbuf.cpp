// PNG, JPEG and BMP by gdk-pixbuf.
#include <gdk-pixbuf/gdk-pixbuf.h>

#include <cstring>
#include <memory>
#include <vector>

#include "platform/codec_rows.h"
#include "platform/library.h"
#include "platform/posix/codec_parts.h"

namespace zck {
namespace {

struct Api {
    bool bThere = false;
    decltype(&g_error_free) errorFree;
    decltype(&g_free) free;
    decltype(&g_object_unref) unref;
    decltype(&gdk_pixbuf_loader_new_with_type) loaderNew;
    decltype(&gdk_pixbuf_loader_write) loaderWrite;
    decltype(&gdk_pixbuf_loader_close) loaderClose;
    decltype(&gdk_pixbuf_loader_get_pixbuf) loaderPixbuf;
    decltype(&gdk_pixbuf_new_from_data) fromData;
    decltype(&gdk_pixbuf_save_to_bufferv) save;
    decltype(&gdk_pixbuf_get_width) width;
    decltype(&gdk_pixbuf_get_height) height;
    decltype(&gdk_pixbuf_get_rowstride) rowStride;
    decltype(&gdk_pixbuf_get_n_channels) channels;
    decltype(&gdk_pixbuf_read_pixels) pixels;
};

Api Load() {
    Api api = {};
    void *library = LibraryLoad("libgdk_pixbuf-2.0.so.0");
    api.bThere = LibraryBind(library, "g_error_free", api.errorFree) && LibraryBind(library, "g_free", api.free) &&
                 LibraryBind(library, "g_object_unref", api.unref) &&
                 LibraryBind(library, "gdk_pixbuf_loader_new_with_type", api.loaderNew) &&
                 LibraryBind(library, "gdk_pixbuf_loader_write", api.loaderWrite) &&
                 LibraryBind(library, "gdk_pixbuf_loader_close", api.loaderClose) &&
                 LibraryBind(library, "gdk_pixbuf_loader_get_pixbuf", api.loaderPixbuf) &&
                 LibraryBind(library, "gdk_pixbuf_new_from_data", api.fromData) &&
                 LibraryBind(library, "gdk_pixbuf_save_to_bufferv", api.save) &&
                 LibraryBind(library, "gdk_pixbuf_get_width", api.width) &&
                 LibraryBind(library, "gdk_pixbuf_get_height", api.height) &&
                 LibraryBind(library, "gdk_pixbuf_get_rowstride", api.rowStride) &&
                 LibraryBind(library, "gdk_pixbuf_get_n_channels", api.channels) &&
                 LibraryBind(library, "gdk_pixbuf_read_pixels", api.pixels);
    return api;
}

const Api &Pixbuf() {
    static const Api s_api = Load();
    return s_api;
}

struct Unref {
    void operator()(void *object) const { Pixbuf().unref(object); }
};
using LoaderPtr = std::unique_ptr<GdkPixbufLoader, Unref>;
using PixbufPtr = std::unique_ptr<GdkPixbuf, Unref>;

/// An error that nobody reads; the status says it all.
class Error {
public:
    Error() = default;
    ~Error() { Clear(); }
    Error(const Error &) = delete;
    Error &operator=(const Error &) = delete;

    GError **Put() {
        Clear();
        return &m_error;
    }
    bool OutOfMemory() const {
        // The domain's number needs a call of its own, and this code has no other meaning worth telling apart.
        return m_error != nullptr && m_error->code == GDK_PIXBUF_ERROR_INSUFFICIENT_MEMORY;
    }

private:
    void Clear() {
        if (m_error != nullptr) Pixbuf().errorFree(m_error);
        m_error = nullptr;
    }
    GError *m_error = nullptr;
};

const char *TypeName(CodecKind kind) {
    switch (kind) {
        case CodecKind::Jpeg:
            return "jpeg";
        case CodecKind::Bmp:
            return "bmp";
        default:
            return "png";
    }
}

void PutRow(const uint8_t *row, int32_t channels, int32_t width, bool straight, uint8_t *out) {
    for (int32_t x = 0; x < width; ++x, row += channels, out += 4) {
        const uint8_t alpha = channels == 4 ? row[3] : uint8_t{255};
        for (int32_t c = 0; c < 3; ++c) out[c] = straight ? row[2 - c] : Multiplied(row[2 - c], alpha);
        out[3] = alpha;
    }
}

HRESULT Give(GdkPixbuf *pixbuf, bool straight, CodecSink &sink) {
    const Api &api = Pixbuf();
    const int32_t width = api.width(pixbuf);
    const int32_t height = api.height(pixbuf);
    uint8_t *pixels = nullptr;
    const HRESULT hr = sink.Begin(width, height, 0, pixels);
    if (FAILED(hr)) return hr;
    const uint8_t *first = api.pixels(pixbuf);
    for (int32_t y = 0; y < height; ++y) {
        PutRow(first + int64_t{y} * api.rowStride(pixbuf), api.channels(pixbuf), width, straight,
               pixels + int64_t{4} * width * (height - 1 - y));
    }
    sink.Keep();
    return S_OK;
}

}    // namespace

bool PixbufThere() { return Pixbuf().bThere; }

HRESULT PixbufDecode(CodecKind kind, std::string_view file, bool straight, CodecSink &sink) {
    const Api &api = Pixbuf();
    if (!api.bThere) return E_INVALIDARG;
    Error error;
    const LoaderPtr loader(api.loaderNew(TypeName(kind), error.Put()));
    if (!loader) return E_INVALIDARG;
    const auto *bytes = reinterpret_cast<const guchar *>(file.data());
    bool whole = api.loaderWrite(loader.get(), bytes, file.size(), error.Put());
    if (!whole && error.OutOfMemory()) return E_OUTOFMEMORY;
    Error ignored;
    whole = api.loaderClose(loader.get(), ignored.Put()) && whole;
    GdkPixbuf *pixbuf = api.loaderPixbuf(loader.get());
    // A picture that breaks off is none; one whose header cannot be read is no image at all.
    if (pixbuf == nullptr) return E_INVALIDARG;
    return whole ? Give(pixbuf, straight, sink) : S_OK;
}

HRESULT PixbufEncode(CodecKind kind, const CodecSource &source, std::string &file) {
    const Api &api = Pixbuf();
    const bool alpha = kind == CodecKind::Png && source.pixels == CodecPixels::Premultiplied;
    const int32_t channels = alpha ? 4 : 3;
    std::vector<uint8_t> pixels;
    pixels.reserve(static_cast<size_t>(source.width) * static_cast<size_t>(source.height) * static_cast<size_t>(channels));
    for (int32_t y = 0; y < source.height; ++y) {
        for (int32_t x = 0; x < source.width; ++x) {
            const CodecPixel pixel = CodecPixelAt(source, x, y);
            for (const uint8_t byte : {pixel.red, pixel.green, pixel.blue}) pixels.push_back(byte);
            if (alpha) pixels.push_back(pixel.alpha);
        }
    }
    const PixbufPtr pixbuf(api.fromData(pixels.data(), GDK_COLORSPACE_RGB, alpha, 8, source.width, source.height,
                                        source.width * channels, nullptr, nullptr));
    if (!pixbuf) return E_FAIL;
    gchar *made = nullptr;
    gsize size = 0;
    Error error;
    if (!api.save(pixbuf.get(), &made, &size, TypeName(kind), nullptr, nullptr, error.Put())) return E_FAIL;
    const std::unique_ptr<gchar, decltype(api.free)> owned(made, api.free);
    file.assign(made, size);
    return S_OK;
}

}    // namespace zck
