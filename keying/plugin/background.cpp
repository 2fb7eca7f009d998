#include "keying/plugin/background.h"

#include <algorithm>
#include <vector>

#include "frames/factory/factory.h"
#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "frames/media/video_format.h"
#include "imaging/colour/fill.h"
#include "platform/status.h"
#include "props/values/colors.h"
#include "zchromakey/frames.h"

namespace zck {
namespace {

bool HasExtension(TextView name) {
    const size_t folder = name.find_last_of(ZCK_TEXT("/\\:"));
    return name.find(ZCK_TEXT("."), folder == TextView::npos ? 0 : folder + 1) != TextView::npos;
}

Z_VID_PROPS PropsLike(const Z_VID_PROPS *like) {
    Z_VID_PROPS props = {};
    if (like != nullptr) {
        props = *like;
    } else {
        props.eVideoFormat = eZVF_NTSC;
        props.nWidth = VideoFormatFind(eZVF_NTSC).nWidth;
        props.nHeight = VideoFormatFind(eZVF_NTSC).nHeight;
    }
    props.fccType = eZFCC_RGB32;
    props.nRowBytes = RowBytes(props.fccType, props.nWidth);
    props.nHeight = -static_cast<int32_t>(std::min<int64_t>(RowCount(props.nHeight), INT32_MAX));
    return props;
}

/// Cells of 20 by 20 pixels. Line `y` of the pattern lands on row `y` - 1, and line 0 under line 1 on the first: the pattern
/// stands one line higher than it is counted, and the last row stays empty.
void FillChecker(uint32_t *pixels, int32_t width, int32_t rows) {
    constexpr int32_t kCell = 20;
    constexpr uint32_t kLight = 0xFFC8C8C8;
    constexpr uint32_t kDark = 0xFF505050;
    for (int32_t y = 0; y < rows; ++y) {
        uint32_t *row = pixels + int64_t{std::max(y - 1, 0)} * width;
        for (int32_t x = 0; x < width; ++x) row[x] = (x / kCell + y / kCell) % 2 == 0 ? kLight : kDark;
    }
}

/// A colour has no value of its own that says "none": two fallbacks tell.
bool ColourOf(TextView name, uint32_t *colour) {
    *colour = ColorFromText(name, 0);
    return *colour == ColorFromText(name, 0xFFFFFFFF);
}

HRESULT MakePattern(IZFrames *factory, TextView name, Z_VID_PROPS props, ComPtr<IZFrame> *background) {
    uint32_t colour = 0;
    const bool checker = EqualNoCase(name, ZCK_TEXT("checker"));
    if (!checker && !ColourOf(name, &colour)) return E_INVALIDARG;
    const int64_t bytes = int64_t{props.nRowBytes} * -int64_t{props.nHeight};
    if (props.nWidth < 1 || props.nRowBytes / 4 < props.nWidth || bytes < 1 || bytes > INT32_MAX) return kVfwEInvalidMediaType;
    std::vector<uint32_t> pixels(static_cast<size_t>(bytes / 4));
    auto *first = reinterpret_cast<uint8_t *>(pixels.data());
    if (checker) {
        FillChecker(pixels.data(), props.nWidth, -props.nHeight);
    } else {
        FillImage(&props, first, colour, 1.0);
    }
    return factory->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(first), background->Put(), nullptr);
}

}    // namespace

HRESULT BackgroundByName(TextView name, const Z_VID_PROPS *like, ComPtr<IZFrame> *background) {
    background->Reset();
    if (name.empty()) return S_FALSE;
    ComPtr<IZFrames> factory;
    const HRESULT hr = FrameFactoryCreate(IID_IZFrames, factory.PutVoid());
    if (FAILED(hr)) return hr;
    if (!HasExtension(name)) return MakePattern(factory.get(), name, PropsLike(like), background);
    const Bstr file{Text(name)};
    return factory->FrameCreateFromFile(file.get(), background->Put(), nullptr);
}

}    // namespace zck
