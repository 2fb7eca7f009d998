// Image files: any bytes are pictures or are refused, by the reader of .bmp files and by the codec that their start asks for.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "fuzz/support/foreign_text.h"
#include "imaging/files/bmp_reader.h"
#include "imaging/files/image_frames.h"
#include "platform/status.h"

namespace zck {
namespace {

const std::string &Path() {
    static const std::string s_path = (std::filesystem::temp_directory_path() /
                                       ("zck_fuzz_image_" + std::to_string(reinterpret_cast<uintptr_t>(&s_path)) + ".bmp"))
                                          .string();
    return s_path;
}

void WalkBmp(size_t size) {
    BITMAPINFOHEADER header = {};
    uint8_t *pixels = nullptr;
    const HRESULT hr = ReadBmp(TextFromUtf8(Path()), &header, &pixels);
    fuzz::Require(hr == S_OK || hr == E_FAIL, "a .bmp file is read or refused");
    fuzz::Require((hr == S_OK) == (pixels != nullptr), "rows come with success");
    fuzz::Require(hr != S_OK || header.biSizeImage + size_t{54} <= size, "no more rows than the file has");
    CoTaskMemFree(pixels);
}

/// The number of pictures.
size_t WalkPictures(bool keepAlpha, bool firstOnly) {
    ImageFrames frames;
    const HRESULT hr = LoadImageFrames(TextFromUtf8(Path()), nullptr, keepAlpha, firstOnly, frames);
    fuzz::Require(hr == S_OK || hr == E_FAIL || hr == E_INVALIDARG || hr == E_OUTOFMEMORY, "a status that is told");
    fuzz::Require((hr == S_OK) == !frames.empty(), "pictures come with success");
    int64_t start = 0;
    for (const ImageFrame &frame : frames) {
        const int64_t rows = std::abs(int64_t{frame.nHeight});
        fuzz::Require(frame.nWidth > 0 && rows > 0 && frame.fccType == eZFCC_ARGB32, "a picture has a size");
        fuzz::Require(int64_t{4} * frame.nWidth * rows <= frame.pixels.Size(), "a picture has its pixels");
        fuzz::Require(frame.rtStart == start && frame.rtDuration >= 0 && frame.rtDuration <= 6553500000, "times go on");
        start += frame.rtDuration != 0 ? frame.rtDuration : 400000;
    }
    return frames.size();
}

void Walk(const uint8_t *data, size_t size) {
    std::ofstream(Path(), std::ios::binary).write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    WalkBmp(size);
    const size_t all = WalkPictures(false, false);
    fuzz::Require(WalkPictures(true, false) == all, "alpha does not change the number of pictures");
    fuzz::Require(WalkPictures(false, true) <= 1, "the first is one");
    std::filesystem::remove(Path());
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk(data, size);
    return 0;
}
