#include "hosts/zkey/plugin_door.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/frame_format.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

void Require(HRESULT status, const std::string &what) {
    if (FAILED(status)) Fail(what + ": " + StatusText(status));
}

/// The keyer drops a frame when its output thread has been busy for this long, and says so by no more than S_FALSE.
constexpr std::chrono::milliseconds kDropTime{1000};

}    // namespace

std::string StatusText(HRESULT status) {
    char number[16];
    std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(status));
    const char *words = "the keyer refuses";
    switch (static_cast<uint32_t>(status)) {
        case 0x8007000E:
            words = "out of memory";
            break;
        case 0x80070057:
            words = "invalid argument";
            break;
        case 0x80040201:
            words = "the keyer has no conversion for this pixel format";
            break;
        case 0x80040248:
            words = "the frame is smaller than its description";
            break;
        case 0x800705B4:
            words = "the keyer's threads did not answer in time";
            break;
        case 0x80040154:
        case 0x80040111:
            words = "the keyer's library has no such class";
            break;
        default:
            break;
    }
    return std::string(words) + " (" + number + ")";
}

Keyer::Keyer() {
    Ref<IClassFactory> factory;
    Require(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.PutVoid()), "cannot open the keyer");
    Require(factory->CreateInstance(nullptr, ZIidOf<IZPlugin>(), m_plugin.PutVoid()), "cannot create the keyer");
    Require(m_plugin->QueryInterface(ZIidOf<IZChromaKey>(), m_key.PutVoid()), "cannot create the keyer");
    Require(m_plugin->QueryInterface(ZIidOf<IZProps>(), m_props.PutVoid()), "cannot create the keyer");
    Require(ZFramesCreate(ZIidOf<IZFrames>(), m_frames.PutVoid()), "cannot create the frame factory");
}

void Keyer::SetProp(const std::string &name, const std::string &value) {
    Require(m_props->PropsSet(Counted(name).get(), Counted(value).get()), "--prop " + name + "=" + value);
}

std::optional<std::string> Keyer::Prop(const std::string &name) {
    Counted value;
    if (m_props->PropsGet(Counted(name).get(), value.Put()) != S_OK) return std::nullopt;
    return value.Utf8();
}

void Keyer::SetKey(CHROMA_KEY_RAW key) { Require(m_key->KeyRawSet(&key), "cannot set the key"); }

Ref<IZFrame> Keyer::NewFrame(const Z_VID_PROPS &props, uint8_t *&pixels) {
    const int64_t bytes = FrameBytes(props);
    if (bytes > INT32_MAX) Fail("the picture is too large: a frame has 2 GB at most");
    Ref<IZFrame> frame;
    Require(m_frames->FrameCreate(static_cast<int32_t>(bytes), nullptr, frame.Put()), "cannot create a frame");
    Z_AV_PROPS all{};
    all.vidProps = props;
    Require(frame->FrameAVPropsSet(&all), "cannot describe a frame");
    int32_t size = 0;
    int64_t address = 0;
    Require(frame->FrameVideoGetBytes(&size, &address), "cannot reach the pixels of a frame");
    if (address == 0 || size < bytes) Fail("cannot create a frame: out of memory");
    pixels = reinterpret_cast<uint8_t *>(static_cast<intptr_t>(address));
    return frame;
}

bool Keyer::OneCallLate() {
    const std::string value = Prop("output.thread").value_or("true");
    return !(SameWord(value, "false") || value == "0" || SameWord(value, "no"));
}

Ref<IZFrame> Keyer::Key(IZFrame *frame) {
    const bool late = OneCallLate();
    for (;;) {
        Ref<IZFrame> result;
        const auto start = std::chrono::steady_clock::now();
        const HRESULT status = m_plugin->OnMediaReceive(0, nullptr, frame, result.Put());
        Require(status, "cannot key the frame");
        if (!late) {
            if (!result) Fail("cannot key the frame: the keyer gave no picture");
            return result;
        }
        if (!result && m_pending) {
            // Nothing came back: either this frame was dropped, which takes the keyer its time, or the one before failed.
            if (std::chrono::steady_clock::now() - start >= kDropTime) continue;
            Fail("cannot key the frame: the keyer gave no picture");
        }
        frame->AddRef();
        *m_pending.Put() = frame;
        return result;
    }
}

Ref<IZFrame> Keyer::Convert(IZFrame *frame) {
    const std::string thread = Prop("output.thread").value_or("true");
    SetKey(CHROMA_KEY_RAW{});
    SetProp("output.thread", "false");
    Ref<IZFrame> result = Key(frame);
    SetProp("output.thread", thread);
    return result;
}

Ref<IZFrame> Keyer::Drain() {
    if (!m_pending) return {};
    // The keyer hands a result over with the next frame only, so the last frame goes in once more; its second result
    // is never fetched.
    const Ref<IZFrame> again = m_pending;
    Ref<IZFrame> result = Key(again.get());
    m_pending.Reset();
    return result;
}

ImageView Keyer::View(IZFrame *frame, int width, int height) {
    Z_AV_PROPS props{};
    int32_t size = 0;
    int64_t address = 0;
    Require(frame->FrameAVPropsGet(&props), "cannot read the keyed frame");
    Require(frame->FrameVideoGetBytes(&size, &address), "cannot read the keyed frame");
    const Z_VID_PROPS &v = props.vidProps;
    const int rows = std::abs(v.nHeight);
    if (address == 0 || v.fccType != eZFCC_ARGB32 || v.nWidth < width || rows < height ||
        int64_t{v.nRowBytes} * (rows - 1) + int64_t{v.nWidth} * 4 > size) {
        Fail("cannot read the keyed frame: it is not the picture that went in");
    }
    const auto *first = reinterpret_cast<const uint8_t *>(static_cast<intptr_t>(address));
    const std::ptrdiff_t step = v.nRowBytes;
    if (v.nHeight > 0) return {first + step * (rows - 1), -step, width, height};
    return {first, step, width, height};
}

}    // namespace zkey
