// TIFF by libtiff.
#include <tiffio.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "platform/codec_rows.h"
#include "platform/library.h"
#include "platform/posix/codec_parts.h"

namespace zck {
namespace {

constexpr tmsize_t kBlockMax = 0x7FFFFFFF;

struct Api {
    bool bThere = false;
    decltype(&TIFFOpenOptionsAlloc) optionsAlloc;
    decltype(&TIFFOpenOptionsFree) optionsFree;
    decltype(&TIFFOpenOptionsSetMaxSingleMemAlloc) optionsBlockMax;
    decltype(&TIFFOpenOptionsSetErrorHandlerExtR) optionsErrors;
    decltype(&TIFFOpenOptionsSetWarningHandlerExtR) optionsWarnings;
    decltype(&TIFFClientOpenExt) open;
    decltype(&TIFFClose) close;
    decltype(&TIFFReadDirectory) nextDirectory;
    decltype(&TIFFGetField) get;
    decltype(&TIFFGetFieldDefaulted) getDefaulted;
    decltype(&TIFFSetField) set;
    decltype(&TIFFRGBAImageOK) imageOk;
    decltype(&TIFFRGBAImageBegin) imageBegin;
    decltype(&TIFFRGBAImageGet) imageGet;
    decltype(&TIFFRGBAImageEnd) imageEnd;
    decltype(&TIFFWriteScanline) writeRow;
    decltype(&TIFFFlush) flush;
};

Api Load() {
    Api api = {};
    void *library = LibraryLoad("libtiff.so.6");
    api.bThere =
        LibraryBind(library, "TIFFOpenOptionsAlloc", api.optionsAlloc) &&
        LibraryBind(library, "TIFFOpenOptionsFree", api.optionsFree) &&
        LibraryBind(library, "TIFFOpenOptionsSetMaxSingleMemAlloc", api.optionsBlockMax) &&
        LibraryBind(library, "TIFFOpenOptionsSetErrorHandlerExtR", api.optionsErrors) &&
        LibraryBind(library, "TIFFOpenOptionsSetWarningHandlerExtR", api.optionsWarnings) &&
        LibraryBind(library, "TIFFClientOpenExt", api.open) && LibraryBind(library, "TIFFClose", api.close) &&
        LibraryBind(library, "TIFFReadDirectory", api.nextDirectory) && LibraryBind(library, "TIFFGetField", api.get) &&
        LibraryBind(library, "TIFFGetFieldDefaulted", api.getDefaulted) && LibraryBind(library, "TIFFSetField", api.set) &&
        LibraryBind(library, "TIFFRGBAImageOK", api.imageOk) && LibraryBind(library, "TIFFRGBAImageBegin", api.imageBegin) &&
        LibraryBind(library, "TIFFRGBAImageGet", api.imageGet) && LibraryBind(library, "TIFFRGBAImageEnd", api.imageEnd) &&
        LibraryBind(library, "TIFFWriteScanline", api.writeRow) && LibraryBind(library, "TIFFFlush", api.flush);
    return api;
}

const Api &Tiff() {
    static const Api s_api = Load();
    return s_api;
}

/// A file in memory: `in` to read, `out` to write.
struct Memory {
    std::string_view in;
    std::string *out = nullptr;
    uint64_t place = 0;

    uint64_t Size() const { return out != nullptr ? out->size() : in.size(); }
};

Memory &Of(thandle_t handle) { return *static_cast<Memory *>(handle); }

tmsize_t Read(thandle_t handle, void *data, tmsize_t n) {
    Memory &memory = Of(handle);
    const std::string_view bytes = memory.out != nullptr ? std::string_view(*memory.out) : memory.in;
    if (n <= 0 || memory.place >= bytes.size()) return 0;
    const size_t part = std::min(static_cast<size_t>(n), bytes.size() - static_cast<size_t>(memory.place));
    std::memcpy(data, bytes.data() + memory.place, part);
    memory.place += part;
    return static_cast<tmsize_t>(part);
}

tmsize_t Write(thandle_t handle, void *data, tmsize_t n) {
    Memory &memory = Of(handle);
    if (memory.out == nullptr || n <= 0) return 0;
    try {
        const size_t end = static_cast<size_t>(memory.place) + static_cast<size_t>(n);
        if (end > memory.out->size()) memory.out->resize(end);
        std::memcpy(memory.out->data() + memory.place, data, static_cast<size_t>(n));
    } catch (...) {
        return 0;    // no exception passes the library
    }
    memory.place += static_cast<uint64_t>(n);
    return n;
}

toff_t Seek(thandle_t handle, toff_t offset, int origin) {
    Memory &memory = Of(handle);
    if (origin == SEEK_CUR) offset += memory.place;
    if (origin == SEEK_END) offset += memory.Size();
    return memory.place = offset;
}

int CloseNothing(thandle_t) { return 0; }
toff_t SizeOf(thandle_t handle) { return Of(handle).Size(); }
int MapNothing(thandle_t, void **, toff_t *) { return 0; }
void UnmapNothing(thandle_t, void *, toff_t) {}
int Silent(TIFF *, void *, const char *, const char *, va_list) { return 1; }

struct Close {
    void operator()(TIFF *file) const { Tiff().close(file); }
};
using FilePtr = std::unique_ptr<TIFF, Close>;

FilePtr Open(Memory &memory, const char *mode) {
    const Api &api = Tiff();
    const std::unique_ptr<TIFFOpenOptions, decltype(api.optionsFree)> options(api.optionsAlloc(), api.optionsFree);
    if (!options) return nullptr;
    api.optionsBlockMax(options.get(), kBlockMax);
    api.optionsErrors(options.get(), Silent, nullptr);
    api.optionsWarnings(options.get(), Silent, nullptr);
    return FilePtr(
        api.open("", mode, &memory, Read, Write, Seek, CloseNothing, SizeOf, MapNothing, UnmapNothing, options.get()));
}

/// Whether the file has straight colour and an alpha. The library multiplies it then; told that this has been done already,
/// it gives the samples as they are.
bool IsStraight(TIFF *file, bool claimMultiplied) {
    uint16_t count = 0;
    uint16_t *kinds = nullptr;
    if (Tiff().getDefaulted(file, TIFFTAG_EXTRASAMPLES, &count, &kinds) == 0 || count == 0) return false;
    if (kinds[0] != EXTRASAMPLE_UNASSALPHA) return false;
    if (claimMultiplied) {
        std::vector<uint16_t> claimed(kinds, kinds + count);
        claimed[0] = EXTRASAMPLE_ASSOCALPHA;
        Tiff().set(file, TIFFTAG_EXTRASAMPLES, static_cast<int>(count), claimed.data());
    }
    return true;
}

/// From red first to blue first.
void PixelsFinish(uint8_t *pixels, int64_t count, bool unmultiply) {
    for (uint8_t *pixel = pixels; pixel < pixels + 4 * count; pixel += 4) {
        std::swap(pixel[0], pixel[2]);
        if (!unmultiply) continue;
        for (int32_t c = 0; c < 3; ++c) pixel[c] = Unmultiplied(pixel[c], pixel[3]);
    }
}

/// Rows as they stand in the file, whatever way up it wants them shown.
bool PageDecode(TIFF *file, uint8_t *pixels) {
    const Api &api = Tiff();
    char message[1024];
    TIFFRGBAImage image = {};
    if (api.imageOk(file, message) == 0 || api.imageBegin(&image, file, 1, message) == 0) return false;
    image.orientation = ORIENTATION_TOPLEFT;
    image.req_orientation = ORIENTATION_BOTLEFT;
    const bool done = api.imageGet(&image, reinterpret_cast<uint32_t *>(pixels), image.width, image.height) != 0;
    api.imageEnd(&image);
    return done;
}

HRESULT PageGive(TIFF *file, bool straight, CodecSink &sink, bool &wanted) {
    uint32_t width = 0;
    uint32_t height = 0;
    if (Tiff().get(file, TIFFTAG_IMAGEWIDTH, &width) == 0 || Tiff().get(file, TIFFTAG_IMAGELENGTH, &height) == 0) return S_OK;
    uint8_t *pixels = nullptr;
    const HRESULT hr = sink.Begin(width, height, 0, pixels);
    if (FAILED(hr)) return hr;
    const bool wasStraight = IsStraight(file, straight);
    if (!PageDecode(file, pixels)) return S_OK;
    PixelsFinish(pixels, int64_t{width} * height, straight && !wasStraight);
    wanted = sink.Keep();
    return S_OK;
}

/// Sets what every file of ours has.
void FieldsSet(TIFF *file, const CodecSource &source, bool alpha) {
    const Api &api = Tiff();
    api.set(file, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(source.width));
    api.set(file, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(source.height));
    api.set(file, TIFFTAG_BITSPERSAMPLE, 8);
    api.set(file, TIFFTAG_SAMPLESPERPIXEL, alpha ? 4 : 3);
    if (alpha) {
        const uint16_t kind = EXTRASAMPLE_ASSOCALPHA;
        api.set(file, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    api.set(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    api.set(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    api.set(file, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    api.set(file, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    // Strips of about 64 KB.
    api.set(file, TIFFTAG_ROWSPERSTRIP, static_cast<uint32_t>(std::max(1, 16384 / source.width)));
}

}    // namespace

bool TiffThere() { return Tiff().bThere; }

HRESULT TiffDecode(std::string_view bytes, bool straight, CodecSink &sink) {
    if (!TiffThere()) return E_INVALIDARG;
    Memory memory{bytes};
    const FilePtr file = Open(memory, "r");
    if (!file) return E_INVALIDARG;
    bool wanted = true;
    // Directories that form a ring end here, too: the library leaves when it meets one again.
    do {
        const HRESULT hr = PageGive(file.get(), straight, sink, wanted);
        if (FAILED(hr)) return hr;
    } while (wanted && Tiff().nextDirectory(file.get()) != 0);
    return S_OK;
}

HRESULT TiffEncode(const CodecSource &source, std::string &bytes) {
    if (!TiffThere()) return E_FAIL;
    Memory memory{{}, &bytes};
    const FilePtr file = Open(memory, "w");
    if (!file) return E_FAIL;
    const bool alpha = source.pixels == CodecPixels::Premultiplied;
    const int32_t from = source.pixels == CodecPixels::Rgb24 ? 3 : 4;
    const int32_t to = alpha ? 4 : 3;
    FieldsSet(file.get(), source, alpha);
    std::vector<uint8_t> row(static_cast<size_t>(source.width) * static_cast<size_t>(to));
    for (int32_t y = 0; y < source.height; ++y) {
        const uint8_t *pixel = source.top + y * source.stride;
        for (uint8_t *out = row.data(); out < row.data() + row.size(); out += to, pixel += from) {
            for (int32_t c = 0; c < 3; ++c) out[c] = pixel[2 - c];
            if (alpha) out[3] = pixel[3];
        }
        if (Tiff().writeRow(file.get(), row.data(), static_cast<uint32_t>(y), 0) < 0) return E_FAIL;
    }
    return Tiff().flush(file.get()) != 0 ? S_OK : E_FAIL;
}

}    // namespace zck
