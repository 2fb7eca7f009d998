// GIF by giflib. Pictures come whole, each laid over what was before.
#include <gif_lib.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "platform/codec_rows.h"
#include "platform/library.h"
#include "platform/palette.h"
#include "platform/posix/codec_parts.h"

namespace zck {
namespace {

struct Api {
    bool bThere = false;
    decltype(&DGifOpen) open;
    decltype(&DGifCloseFile) close;
    decltype(&DGifGetRecordType) recordType;
    decltype(&DGifGetImageDesc) imageDesc;
    decltype(&DGifGetLine) line;
    decltype(&DGifGetExtension) extension;
    decltype(&DGifGetExtensionNext) extensionNext;
    decltype(&DGifExtensionToGCB) control;
    decltype(&EGifOpen) create;
    decltype(&EGifCloseFile) finish;
    decltype(&EGifPutScreenDesc) putScreen;
    decltype(&EGifPutImageDesc) putImage;
    decltype(&EGifPutLine) putLine;
    decltype(&GifMakeMapObject) makeMap;
    decltype(&GifFreeMapObject) freeMap;
};

Api Load() {
    Api api = {};
    void *library = LibraryLoad("libgif.so.7");
    api.bThere =
        LibraryBind(library, "DGifOpen", api.open) && LibraryBind(library, "DGifCloseFile", api.close) &&
        LibraryBind(library, "DGifGetRecordType", api.recordType) && LibraryBind(library, "DGifGetImageDesc", api.imageDesc) &&
        LibraryBind(library, "DGifGetLine", api.line) && LibraryBind(library, "DGifGetExtension", api.extension) &&
        LibraryBind(library, "DGifGetExtensionNext", api.extensionNext) &&
        LibraryBind(library, "DGifExtensionToGCB", api.control) && LibraryBind(library, "EGifOpen", api.create) &&
        LibraryBind(library, "EGifCloseFile", api.finish) && LibraryBind(library, "EGifPutScreenDesc", api.putScreen) &&
        LibraryBind(library, "EGifPutImageDesc", api.putImage) && LibraryBind(library, "EGifPutLine", api.putLine) &&
        LibraryBind(library, "GifMakeMapObject", api.makeMap) && LibraryBind(library, "GifFreeMapObject", api.freeMap);
    return api;
}

const Api &Gif() {
    static const Api s_api = Load();
    return s_api;
}

int Read(GifFileType *gif, GifByteType *data, int n) {
    auto &rest = *static_cast<std::string_view *>(gif->UserData);
    const size_t part = std::min(static_cast<size_t>(std::max(n, 0)), rest.size());
    std::memcpy(data, rest.data(), part);
    rest.remove_prefix(part);
    return static_cast<int>(part);
}

int Write(GifFileType *gif, const GifByteType *data, int n) {
    try {
        static_cast<std::string *>(gif->UserData)->append(reinterpret_cast<const char *>(data), static_cast<size_t>(n));
    } catch (...) {
        return 0;    // no exception passes the library
    }
    return n;
}

struct Close {
    void operator()(GifFileType *gif) const {
        int ignored = 0;
        Gif().close(gif, &ignored);
    }
};

struct FreeMap {
    void operator()(ColorMapObject *map) const { Gif().freeMap(map); }
};

using Pixels = std::vector<uint32_t>;    // 0xAARRGGBB

/// The pictures of one file, one after the other.
class Player {
public:
    Player(GifFileType *gif, CodecSink &sink) : m_gif(gif), m_sink(sink) {}

    HRESULT Play() {
        for (bool wanted = true; wanted;) {
            GifRecordType type = UNDEFINED_RECORD_TYPE;
            if (Gif().recordType(m_gif, &type) == GIF_ERROR) return S_OK;
            if (type == EXTENSION_RECORD_TYPE) {
                if (!ReadExtension()) return S_OK;
            } else if (type == IMAGE_DESC_RECORD_TYPE) {
                bool whole = false;
                const HRESULT hr = ReadPicture(whole, wanted);
                if (FAILED(hr) || !whole) return hr;
            } else {
                return S_OK;
            }
        }
        return S_OK;
    }

private:
    bool ReadExtension() {
        int code = 0;
        GifByteType *block = nullptr;
        bool good = Gif().extension(m_gif, &code, &block) != GIF_ERROR;
        while (good && block != nullptr) {
            if (code == GRAPHICS_EXT_FUNC_CODE) Gif().control(block[0], block + 1, &m_control);
            good = Gif().extensionNext(m_gif, &block) != GIF_ERROR;
        }
        return good;
    }

    /// `whole` is false when the file breaks off, and the picture is dropped.
    HRESULT ReadPicture(bool &whole, bool &wanted) {
        if (Gif().imageDesc(m_gif) == GIF_ERROR) return S_OK;
        const GifImageDesc &part = m_gif->Image;
        if (m_gif->SWidth < 1 || m_gif->SHeight < 1) {
            m_gif->SWidth = part.Left + part.Width;
            m_gif->SHeight = part.Top + part.Height;
        }
        const ColorMapObject *map = part.ColorMap != nullptr ? part.ColorMap : m_gif->SColorMap;
        if (map == nullptr) return S_OK;
        uint8_t *out = nullptr;
        const auto delay = static_cast<uint16_t>(m_control.DelayTime);
        const HRESULT hr = m_sink.Begin(m_gif->SWidth, m_gif->SHeight, delay, out);
        if (FAILED(hr)) return hr;
        m_screen.resize(static_cast<size_t>(m_gif->SWidth) * static_cast<size_t>(m_gif->SHeight));
        Pixels kept;
        if (m_control.DisposalMode == DISPOSE_PREVIOUS) kept = m_screen;
        if (!Draw(part, *map)) return S_OK;
        whole = true;
        Give(out);
        wanted = m_sink.Keep();
        if (m_control.DisposalMode == DISPOSE_PREVIOUS) m_screen.swap(kept);
        if (m_control.DisposalMode == DISPOSE_BACKGROUND) Erase(part);
        m_control = {};
        m_control.TransparentColor = NO_TRANSPARENT_COLOR;
        return S_OK;
    }

    bool Draw(const GifImageDesc &part, const ColorMapObject &map) {
        std::vector<GifByteType> row(static_cast<size_t>(std::max(part.Width, 1)));
        static constexpr int kStarts[] = {0, 4, 2, 1};
        static constexpr int kSteps[] = {8, 8, 4, 2};
        const int passes = part.Interlace ? 4 : 1;
        for (int pass = 0; pass < passes; ++pass) {
            const int step = part.Interlace ? kSteps[pass] : 1;
            for (int y = part.Interlace ? kStarts[pass] : 0; y < part.Height; y += step) {
                if (Gif().line(m_gif, row.data(), part.Width) == GIF_ERROR) return false;
                DrawRow(part, map, row, part.Top + y);
            }
        }
        return true;
    }

    void DrawRow(const GifImageDesc &part, const ColorMapObject &map, const std::vector<GifByteType> &row, int y) {
        if (y >= m_gif->SHeight) return;
        const int end = std::min(part.Width, m_gif->SWidth - part.Left);
        uint32_t *out = m_screen.data() + int64_t{y} * m_gif->SWidth + part.Left;
        for (int x = 0; x < end; ++x) {
            const int index = row[static_cast<size_t>(x)];
            if (index == m_control.TransparentColor || index >= map.ColorCount) continue;
            const GifColorType &colour = map.Colors[index];
            out[x] = 0xFF000000U | static_cast<uint32_t>(colour.Red << 16 | colour.Green << 8 | colour.Blue);
        }
    }

    void Erase(const GifImageDesc &part) {
        const int end = std::min(part.Width, m_gif->SWidth - part.Left);
        for (int y = part.Top; y < std::min(part.Top + part.Height, m_gif->SHeight); ++y) {
            if (end > 0) std::fill_n(m_screen.data() + int64_t{y} * m_gif->SWidth + part.Left, end, 0U);
        }
    }

    /// The bottom row first.
    void Give(uint8_t *out) const {
        const auto width = static_cast<size_t>(m_gif->SWidth);
        for (size_t y = m_screen.size(); y > 0; y -= width, out += 4 * width)
            std::memcpy(out, m_screen.data() + (y - width), 4 * width);
    }

    GifFileType *m_gif;
    CodecSink &m_sink;
    Pixels m_screen;
    GraphicsControlBlock m_control = {0, false, 0, NO_TRANSPARENT_COLOR};
};

}    // namespace

bool GifThere() { return Gif().bThere; }

HRESULT GifDecode(std::string_view bytes, CodecSink &sink) {
    if (!GifThere()) return E_INVALIDARG;
    int error = 0;
    const std::unique_ptr<GifFileType, Close> gif(Gif().open(&bytes, Read, &error));
    return gif ? Player(gif.get(), sink).Play() : E_INVALIDARG;
}

HRESULT GifEncode(const CodecSource &source, std::string &file) {
    if (!GifThere() || source.width > 0xFFFF || source.height > 0xFFFF) return E_FAIL;
    Pixels pixels;
    pixels.reserve(static_cast<size_t>(source.width) * static_cast<size_t>(source.height));
    for (int32_t y = 0; y < source.height; ++y) {
        for (int32_t x = 0; x < source.width; ++x) {
            const CodecPixel pixel = CodecPixelAt(source, x, y);
            pixels.push_back(static_cast<uint32_t>(pixel.red << 16 | pixel.green << 8 | pixel.blue));
        }
    }
    PalettePicture picture = PaletteMake(pixels);
    const std::unique_ptr<ColorMapObject, FreeMap> map(Gif().makeMap(256, nullptr));
    if (!map) return E_OUTOFMEMORY;
    for (size_t i = 0; i < picture.colours.size(); ++i) {
        const uint32_t colour = picture.colours[i];
        map->Colors[i] = {static_cast<GifByteType>(colour >> 16), static_cast<GifByteType>(colour >> 8),
                          static_cast<GifByteType>(colour)};
    }
    int error = 0;
    GifFileType *gif = Gif().create(&file, Write, &error);
    if (gif == nullptr) return E_FAIL;
    bool good = Gif().putScreen(gif, source.width, source.height, 8, 0, map.get()) != GIF_ERROR &&
                Gif().putImage(gif, 0, 0, source.width, source.height, false, nullptr) != GIF_ERROR;
    for (int32_t y = 0; good && y < source.height; ++y) {
        good = Gif().putLine(gif, picture.indices.data() + int64_t{y} * source.width, source.width) != GIF_ERROR;
    }
    return Gif().finish(gif, &error) != GIF_ERROR && good ? S_OK : E_FAIL;
}

}    // namespace zck
