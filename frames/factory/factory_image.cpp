// Frames from image files and from colours.
#include <cstdlib>
#include <vector>

#include "frames/factory/frame_factory.h"
#include "frames/factory/option_text.h"
#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "frames/object/address.h"
#include "imaging/convert/copy_frame.h"
#include "imaging/files/image_frames.h"
#include "platform/files.h"
#include "props/values/colors.h"

namespace zck {
namespace {

using Options = XMLParse::CoXMLNode;

/// A name that cannot be that of a file. No colour says "none" by itself: two fallbacks tell.
bool IsColour(TextView name, uint32_t &colour) {
    if (name.empty() || name.find_first_of(ZCK_TEXT("/\\")) != TextView::npos || FileExists(name)) return false;
    colour = ColorFromText(name, 0);
    return colour == ColorFromText(name, 0xFFFFFFFF);
}

/// A name of no format gives 0.
eZFCC FormatOf(Options &options, eZFCC otherwise) {
    ValueData data;
    return options.AttributeRead(ZCK_TEXT("pixel_format"), ValueType::PixelFormat, data) ? data.format : otherwise;
}

/// A picture for a new frame.
struct Made {
    Z_VID_PROPS record = {};
    std::vector<uint8_t> bytes;    // when they are none of the file's
    ImageFrames images;
    const uint8_t *pixels = nullptr;
};

HRESULT BytesReserve(Made &made) {
    const int32_t size = FrameBufferSize(&made.record);
    if (size < 1) return kVfwEInvalidMediaType;
    made.bytes.resize(static_cast<size_t>(size));
    made.pixels = made.bytes.data();
    return S_OK;
}

HRESULT ColourMake(uint32_t colour, Options &options, Made &made) {
    made.record.eVideoFormat = eZVF_NTSC;
    made.record.fccType = FormatOf(options, eZFCC_ARGB32);
    VideoPropsUpdate(&made.record, true);
    const HRESULT hr = BytesReserve(made);
    if (SUCCEEDED(hr)) PixelsFill(made.record, made.bytes.data(), static_cast<uint32_t>(made.bytes.size()), colour, true);
    return hr;
}

Z_VID_PROPS RecordOf(const ImageFrame &image) {
    Z_VID_PROPS record = {};
    record.fccType = image.fccType;
    record.nWidth = image.nWidth;
    record.nHeight = image.nHeight;
    record.nRowBytes = RowBytes(image.fccType, image.nRowPixels != 0 ? image.nRowPixels : image.nWidth);
    VideoPropsUpdate(&record, false);
    return record;
}

HRESULT FileMake(TextView name, Options &options, Made &made) {
    const HRESULT hr = LoadImageFrames(name, nullptr, false, true, made.images);
    if (FAILED(hr)) return hr;
    const ImageFrame &image = made.images.front();
    const Z_VID_PROPS source = RecordOf(image);
    made.record = source;
    made.pixels = image.pixels.Data();
    made.record.fccType = FormatOf(options, source.fccType);
    if (IsRgbFormat(made.record.fccType)) {
        const int32_t rows = std::abs(source.nHeight);
        made.record.nHeight = options.BoolGet(ZCK_TEXT("bottom-top")) ? rows : -rows;
    }
    if (made.record.fccType == source.fccType && made.record.nHeight == source.nHeight) return S_OK;
    // There is no route to what has no size.
    if (PixelBits(made.record.fccType) == 0) return kVfwEInvalidSubtype;
    made.record.nRowBytes = RowBytes(made.record.fccType, made.record.nWidth);
    const HRESULT reserved = BytesReserve(made);
    if (FAILED(reserved)) return reserved;
    return CopyFrameCC_Thread(image.pixels.Data(), image.pixels.Size(), made.bytes.data(),
                              static_cast<int64_t>(made.bytes.size()), &source, &made.record);
}

}    // namespace

HRESULT CCoZFFactory_I::CreateFromFile(TextView name, TextView text, FramePtr &out) {
    XMLParse::XMLNodePtr options;
    HRESULT hr = OptionsFromText(text, options);
    if (FAILED(hr)) return hr;
    Made made;
    uint32_t colour = 0;
    hr = IsColour(name, colour) ? ColourMake(colour, *options, made) : FileMake(name, *options, made);
    return FAILED(hr) ? hr : CreateFromProps(&made.record, AddressOf(made.pixels), text, out);
}

HRESULT CCoZFFactory_I::FrameCreateFromFile(BSTR _bsFileNameOrColor, IZFrame **_ppFrameRes, BSTR _bsProps) {
    if (_ppFrameRes == nullptr) return E_POINTER;
    *_ppFrameRes = nullptr;
    return Guarded([&] {
        FramePtr frame;
        const HRESULT hr = CreateFromFile(ViewOf(_bsFileNameOrColor), ViewOf(_bsProps), frame);
        if (SUCCEEDED(hr)) *_ppFrameRes = frame.Detach();
        return hr;
    });
}

HRESULT CCoZFFactory_I::ZFFrameCreateFromFile(BSTR _bsFileNameOrColor, IZFFrame **_ppFrameRes, BSTR _bsProps) {
    if (_ppFrameRes == nullptr) return E_POINTER;
    *_ppFrameRes = nullptr;
    return Guarded([&] {
        FramePtr frame;
        const HRESULT hr = CreateFromFile(ViewOf(_bsFileNameOrColor), ViewOf(_bsProps), frame);
        if (SUCCEEDED(hr)) *_ppFrameRes = frame.Detach();
        return hr;
    });
}

}    // namespace zck
