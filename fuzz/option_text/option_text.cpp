// The options of a creating operation, name=value pairs in one text, as the factory reads them: every attribute as every
// type, and a frame that is made with them.
#include "frames/factory/option_text.h"

#include <string_view>

#include "frames/factory/factory.h"
#include "frames/media/video_props.h"
#include "fuzz/support/foreign_text.h"
#include "fuzz/support/trees.h"
#include "platform/com_ptr.h"
#include "zchromakey/frames.h"

namespace zck {
namespace {

IZFrames *Frames() {
    static ComPtr<IZFrames> s_frames;
    if (!s_frames) {
        fuzz::Require(FrameFactoryCreate(IID_IZFrames, reinterpret_cast<void **>(s_frames.Put())) == S_OK, "a factory is made");
    }
    return s_frames.get();
}

void WalkFrame(TextView text, uint32_t color) {
    Z_VID_PROPS props = {};
    props.fccType = eZFCC_ARGB32;
    props.nWidth = 4;
    props.nHeight = 2;
    props.nRowBytes = 16;
    ComPtr<IZFrame> frame;
    const Bstr options(text);
    const HRESULT hr = Frames()->FrameCreateFromProps(&props, 0, frame.Put(), options.get());
    fuzz::Require(hr == S_OK || hr == E_OUTOFMEMORY, "a frame is made, or there is no memory for its sound");
    if (hr != S_OK) return;
    int32_t size = 0;
    int64_t address = 0;
    fuzz::Require(frame->FrameVideoGetBytes(&size, &address) == S_OK && size >= 32, "a frame has pixels");
    const auto *pixel = reinterpret_cast<const uint8_t *>(address);
    const uint32_t filled = uint32_t{pixel[2]} | uint32_t{pixel[1]} << 8 | uint32_t{pixel[0]} << 16 | uint32_t{pixel[3]} << 24;
    fuzz::Require(filled == color, "a frame has its colour");
}

void Walk(std::string_view bytes) {
    const Text text = TextFromUtf8(bytes);
    XMLParse::XMLNodePtr options;
    fuzz::Require(OptionsFromText(text, options) == S_OK, "options are always taken");
    fuzz::RequireWhole(options, text.size() + 1);
    Text name;
    Text value;
    for (size_t i = 0; options->AttributeAt(i, name, value); ++i) {
        if (name.find(ZCK_TEXT("::")) != Text::npos) continue;
        fuzz::Require(options->IntGet(name) == IntFromText(value), "a number is the text's");
        fuzz::Require(OptionColor(*options, name) == ColorFromText(value, 0), "a colour is the text's");
    }
    // Samples are memory: a few of them are enough here.
    if (options->IntGet(ZCK_TEXT("audio_samples")) < 4096) WalkFrame(text, OptionColor(*options, ZCK_TEXT("solid_color")));
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk({reinterpret_cast<const char *>(data), size});
    return 0;
}
