#include "hosts/zkey/plugin_door.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/frame_format.h"
#include "hosts/zkey/key_doubts.h"
#include "hosts/zkey/obstacles.h"
#include "hosts/zkey/progress.h"
#include "hosts/zkey/room.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

void Require(HRESULT status, const std::string &what) {
    if (FAILED(status)) Fail(what + ": " + StatusText(status));
}

/// The system's limit of a file's size, or that of the form of the file.
constexpr HRESULT kFileTooLarge = static_cast<HRESULT>(0x800700DF);

/// The keyer drops a frame when its output thread has been busy for this long, and says so by no more than S_FALSE.
constexpr std::chrono::milliseconds kDropTime{1000};

constexpr char kNoPicture[] = "the keyer gave no picture";

/// Far more than the text of any key.
std::string StartOf(const std::string &path) {
    constexpr std::size_t kMost = std::size_t{1} << 24;
    std::string bytes(std::min(kMost, static_cast<std::size_t>(SizeOf(path))), '\0');
    std::FILE *file = OpenFile(path, "rb");
    if (file == nullptr) return {};
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    std::fclose(file);
    return bytes;
}

}    // namespace

std::string StatusText(HRESULT status) {
    char number[16];
    std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(status));
    const char *words = "the keyer refuses";
    switch (status) {
        case E_NOTIMPL:
            words = "this build of the library cannot do that";
            break;
        case E_OUTOFMEMORY:
            words = "out of memory";
            break;
        case E_INVALIDARG:
            words = "invalid argument";
            break;
        case Z_E_UNSUPPORTED_FORMAT:
            words = "the keyer has no conversion for this pixel format";
            break;
        case Z_E_INVALID_VIDEO_PROPS:
            words = "the frame is smaller than its description";
            break;
        case Z_E_TIMEOUT:
            words = "the keyer's threads did not answer in time";
            break;
        case Z_E_DISK_FULL:
            words = "no space left";
            break;
        case kFileTooLarge:
            words = "the file would be too large";
            break;
        case Z_E_ACCESS_DENIED:
            words = "access denied";
            break;
        case Z_E_CLASS_NOT_REGISTERED:
        case CLASS_E_CLASSNOTAVAILABLE:
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
    Require(m_plugin->QueryInterface(ZIidOf<IZPersist>(), m_persist.PutVoid()), "cannot create the keyer");
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

CHROMA_KEY_RAW Keyer::LoadKey(const std::string &path, bool quiet) {
    if (IsFolder(path)) Fail(path + " is no saved key: it is a folder");
    // A text that is no file's name is taken for the key itself, so the file is looked at here.
    RequireFile(path);
    const KeyDoubts doubts = FindKeyDoubts(IsFile(path) ? StartOf(path) : "");
    if (!quiet) {
        for (const std::string &line : doubts.warnings) Note(path + ": " + line);
    }
    if (!doubts.refusal.empty()) Fail(path + doubts.refusal);
    const HRESULT status = m_persist->PersistLoad(nullptr, Counted(path).get(), nullptr);
    if (status == E_INVALIDARG) Fail(path + " is no saved key: " + kNoXml);
    Require(status, "cannot read the key " + path);
    CHROMA_KEY_RAW key{};
    Require(m_key->KeyRawGet(&key), "cannot read the key " + path);
    if (key.nKeysUsed < 1) Fail(path + " is no saved key: " + kNoConfig);
    if (key.eType != eCKT_RGB && key.eType != eCKT_HLS && key.eType != eCKT_YUV) {
        Fail(path + ": the type " + std::to_string(key.eType) + " of its key keys nothing; 2 is RGB, 3 HLS, 4 YUV");
    }
    const int32_t used = std::min(key.nKeysUsed, 16);
    if (std::none_of(key.arrKeys, key.arrKeys + used, [](const SINGLE_KEY &k) { return k.nDelta != 0; })) {
        Fail(path + ": none of the " + std::to_string(used) +
             " colours of its key has a \"delta\"; the key elements come first in m_config");
    }
    return key;
}

void Keyer::SaveKey(const std::string &path) {
    // The library does not tell when it cannot write the file.
    RequireWritable(path);
    Require(m_persist->PersistSaveToFile(nullptr, Counted(path).get(), nullptr), "cannot save the key to " + path);
    if (!IsFile(path)) Fail("cannot save the key to " + path);
    const std::string saved = StartOf(path);
    if (saved.empty() || !FindKeyDoubts(saved).refusal.empty()) {
        RemoveFile(path);
        Fail("cannot save the key to " + path + ": it could not be completed and is removed; is there space left?");
    }
}

std::vector<std::pair<std::string, std::string>> Keyer::Props() {
    std::vector<std::pair<std::string, std::string>> out;
    int32_t count = 0;
    Require(m_props->PropsGetCount(nullptr, &count), "cannot read the keyer's properties");
    for (int32_t i = 0; i < count; ++i) {
        Counted name;
        Counted value;
        int32_t isNode = 0;
        Require(m_props->PropsGetByIndex(nullptr, i, name.Put(), value.Put(), &isNode), "cannot read the keyer's properties");
        out.emplace_back(name.Utf8(), value.Utf8());
    }
    return out;
}

Ref<IZFrame> Keyer::NewFrame(const Z_VID_PROPS &props, uint8_t *&pixels) {
    const int64_t bytes = FrameBytes(props);
    if (bytes > INT32_MAX) Fail("the picture is too large: a frame has 2 GB at most");
    Ref<IZFrame> frame;
    const HRESULT made = m_frames->FrameCreate(static_cast<int32_t>(bytes), nullptr, frame.Put());
    if (made == E_OUTOFMEMORY) Fail("cannot create a frame: out of memory: " + WhyNoRoom(bytes));
    Require(made, "cannot create a frame");
    Z_AV_PROPS all{};
    all.vidProps = props;
    Require(frame->FrameAVPropsSet(&all), "cannot describe a frame");
    int32_t size = 0;
    int64_t address = 0;
    Require(frame->FrameVideoGetBytes(&size, &address), "cannot reach the pixels of a frame");
    if (address == 0 || size < bytes) Fail("cannot create a frame: out of memory: " + WhyNoRoom(bytes));
    pixels = reinterpret_cast<uint8_t *>(static_cast<intptr_t>(address));
    return frame;
}

bool Keyer::OneCallLate() {
    const std::string value = Prop("output.thread").value_or("true");
    return !(SameWord(value, "false") || value == "0" || SameWord(value, "no"));
}

// The status does not always say that memory was short, so one more frame of the result's size is asked for.
void Keyer::FailKeying(IZFrame *frame, const std::string &words) {
    Z_AV_PROPS props{};
    frame->FrameAVPropsGet(&props);
    const int64_t bytes = int64_t{4} * props.vidProps.nWidth * std::abs(int64_t{props.vidProps.nHeight});
    Ref<IZFrame> probe;
    if (bytes <= INT32_MAX && m_frames->FrameCreate(static_cast<int32_t>(bytes), nullptr, probe.Put()) == E_OUTOFMEMORY)
        Fail("cannot key the frame: out of memory: " + WhyNoRoom(bytes));
    Fail("cannot key the frame: " + words);
}

Ref<IZFrame> Keyer::Key(IZFrame *frame) {
    const bool late = OneCallLate();
    for (;;) {
        Ref<IZFrame> result;
        const auto start = std::chrono::steady_clock::now();
        const HRESULT status = m_plugin->OnMediaReceive(0, nullptr, frame, result.Put());
        if (FAILED(status)) FailKeying(frame, StatusText(status));
        if (!late) {
            if (!result) FailKeying(frame, kNoPicture);
            return result;
        }
        if (!result && m_pending) {
            // Nothing came back: either this frame was dropped, which takes the keyer its time, or the one before failed.
            if (std::chrono::steady_clock::now() - start >= kDropTime) continue;
            FailKeying(frame, kNoPicture);
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

Ref<IZKey> Keyer::KeyObject(IZFrame *reference) {
    Ref<IZKey> key;
    Require(m_key->KeyGet(reference, key.Put(), Counted("background=''").get()), "cannot edit a key");
    return key;
}

void Keyer::TakeKey(IZKey *key) { Require(m_key->KeySet(key), "cannot take the key"); }

Ref<IZFrame> Keyer::FrameOf(IUnknown *object) {
    Ref<IZFrame> frame;
    if (object == nullptr) Fail("the keyer gave no picture");
    Require(object->QueryInterface(IID_IZFrame, frame.PutVoid()), "the keyer gave no picture");
    return frame;
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

Ref<IZFrame> Keyer::Reshape(Ref<IZFrame> frame, const Shape &shape) {
    if (!shape.changes) return frame;
    Z_AV_PROPS props{};
    Require(frame->FrameAVPropsGet(&props), "cannot read a frame");
    props.vidProps.nAspectX = shape.source.x;
    props.vidProps.nAspectY = shape.source.y;
    Require(frame->FrameAVPropsSet(&props), "cannot describe a frame");
    Z_VID_PROPS target = props.vidProps;
    target.eVideoFormat = eZVF_Custom;
    target.nWidth = shape.width;
    target.nHeight = target.nHeight < 0 ? -shape.height : shape.height;
    target.nRowBytes = 0;
    target.nAspectX = shape.result.x;
    target.nAspectY = shape.result.y;
    Ref<IZFrame> result;
    const HRESULT status = frame->FrameConvert(&target, result.Put(), Counted(shape.options).get());
    if (status == E_OUTOFMEMORY)
        Fail("cannot bring a picture to its size: out of memory: " + WhyNoRoom(int64_t{4} * shape.width * shape.height));
    Require(status, "cannot bring a picture to its size");
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
    if (address == 0 || (v.fccType != eZFCC_ARGB32 && v.fccType != eZFCC_RGB32) || v.nWidth < width || rows < height ||
        int64_t{v.nRowBytes} * (rows - 1) + int64_t{v.nWidth} * 4 > size) {
        Fail("cannot read the keyed frame: it is not the picture that went in");
    }
    const auto *first = reinterpret_cast<const uint8_t *>(static_cast<intptr_t>(address));
    const std::ptrdiff_t step = v.nRowBytes;
    if (v.nHeight > 0) return {first + step * (rows - 1), -step, width, height};
    return {first, step, width, height};
}

Image Keyer::Opaque(IUnknown *object, int width, int height) {
    const Ref<IZFrame> frame = FrameOf(object);
    const ImageView from = View(frame.get(), width, height);
    Image out;
    out.Resize(width, height);
    for (int y = 0; y < height; ++y) {
        uint8_t *row = out.Row(y);
        std::memcpy(row, from.Row(y), std::size_t{4} * static_cast<std::size_t>(width));
        for (int x = 0; x < width; ++x) row[4 * x + 3] = 255;
    }
    return out;
}

void Keyer::ClearBorders(IZFrame *frame, int width, int height, const Borders &borders) {
    const ImageView picture = View(frame, width, height);
    // The frame is this program's alone; pictures are read only for all others.
    const auto row = [&](int y) { return const_cast<uint8_t *>(picture.Row(y)); };
    const int left = std::min(borders.left, width);
    const int right = std::min(borders.right, width - left);
    const auto clear = [&](int y, int from, int count) {
        std::memset(row(y) + std::ptrdiff_t{4} * from, 0, std::size_t{4} * static_cast<std::size_t>(count));
    };
    for (int y = 0; y < height; ++y) {
        if (y < borders.top || y >= height - borders.bottom) {
            clear(y, 0, width);
        } else {
            clear(y, 0, left);
            clear(y, width - right, right);
        }
    }
}

}    // namespace zkey
