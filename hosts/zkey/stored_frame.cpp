#include "hosts/zkey/stored_frame.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "hosts/zkey/byte_stream.h"
#include "hosts/zkey/failure.h"
#include "hosts/zkey/frame_sound.h"
#include "hosts/zkey/obstacles.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/plugin_door.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/text.h"
#include "zchromakey/f_frame.h"
#include "zchromakey/frame_i.h"

namespace zkey {
namespace {

constexpr HRESULT kEndOfFile = static_cast<HRESULT>(0x80070026);
constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070002);

std::string BytesOf(const std::string &path) {
    PipeReader file(path);
    std::string bytes;
    std::vector<uint8_t> piece(std::size_t{1} << 20);
    while (const std::size_t got = file.Read(piece.data(), piece.size()))
        bytes.append(reinterpret_cast<const char *>(piece.data()), got);
    return bytes;
}

HRESULT Load(IZFrame *frame, const std::string &bytes, int32_t flags) {
    ByteStream stream(bytes);
    return WideView<IZFrame_I>(frame)->ZFLoadFromStream(&stream, flags);
}

void CopyAll(IStream *from, const std::string &path) {
    PipeWriter file(path);
    std::vector<uint8_t> piece(std::size_t{1} << 20);
    for (;;) {
        ULONG got = 0;
        if (FAILED(from->Read(piece.data(), static_cast<ULONG>(piece.size()), &got))) Fail("cannot store the frame");
        if (got == 0) break;
        file.Write(piece.data(), got);
    }
    file.Close();
}

std::string Number(int64_t n) { return std::to_string(n); }

std::string Seconds(int64_t time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.7g s", static_cast<double>(time) / 1e7);
    return text;
}

std::string PictureLine(const StoredFrame &stored, const ZF_INFO &info) {
    if (stored.pixelsGone) return "gone with the program that stored it";
    const Z_VID_PROPS &v = info.avProps.vidProps;
    if (info.cbVideo == 0) return "none";
    return Number(v.nWidth) + "x" + Number(std::abs(v.nHeight)) + ", " + Number(info.cbVideo) + " bytes";
}

std::string SoundLine(const ZF_INFO &info) {
    const Z_AUD_PROPS &a = info.avProps.audProps;
    if (info.cbAudio == 0) return "none";
    return Number(info.nAudioSamples) + " samples, " + Number(a.nChannels) + (a.nChannels == 1 ? " channel, " : " channels, ") +
           Number(a.nSamplesPerSec) + " Hz, " + Number(std::abs(a.nBitsPerSample)) + " bits";
}

}    // namespace

void StoreFrame(IZFrame *frame, const std::string &path) {
    Ref<IUnknown> stored;
    const HRESULT status = WideView<IZFrame_I>(frame)->ZFSaveToStream(stored.Put(), eZFC_Full);
    if (FAILED(status)) Fail("cannot store the frame: " + StatusText(status));
    Ref<IStream> stream;
    if (FAILED(stored->QueryInterface(IID_IStream, stream.PutVoid()))) Fail("cannot store the frame");
    try {
        CopyAll(stream.get(), path);
    } catch (const Failure &) {
        if (IsFile(path)) RemoveFile(path);
        throw;
    }
}

StoredFrame LoadFrame(const std::string &path) {
    RequireFile(path);
    const std::string bytes = BytesOf(path);
    StoredFrame stored{EmptyFrame(), false};
    HRESULT status = Load(stored.frame.get(), bytes, eZFC_Full);
    if (status == kNotFound) {
        stored = {EmptyFrame(), true};
        status = Load(stored.frame.get(), bytes, eZFC_ObjData_Audio);
    }
    if (status == kEndOfFile) Fail(path + " is cut off");
    if (status == E_FAIL) Fail(path + " is no stored frame, or damaged");
    if (FAILED(status)) Fail(path + " is damaged: " + StatusText(status));
    return stored;
}

std::string DescribeStored(const StoredFrame &stored) {
    const Ref<IZFFrame> frame = WideView<IZFFrame>(stored.frame.get());
    ZF_INFO info{};
    if (FAILED(frame->ZFInfoGet(&info))) Fail("cannot read the frame");
    std::string out = "picture: " + PictureLine(stored, info) + "\ntime: " + Seconds(info.time.rtStartTime) + " to " +
                      Seconds(info.time.rtEndTime) + "\nsound: " + SoundLine(info) + "\n";
    for (int32_t i = 0; i < info.nDataCount; ++i) {
        Counted name;
        int32_t size = 0;
        int64_t value = 0;
        if (FAILED(frame->ZFDataGetByIndex(i, name.Put(), &size, &value))) continue;
        out += "data: " + name.Utf8() + (size != 0 ? ", " + Number(size) + " bytes" : " = " + Number(value)) + "\n";
    }
    for (int32_t i = 0; i < info.nTextCount; ++i) {
        Counted name;
        Counted text;
        if (FAILED(frame->ZFTextGetByIndex(i, name.Put(), text.Put()))) continue;
        out += "text: " + name.Utf8() + " = " + text.Utf8() + "\n";
    }
    if (info.nObjectCount > 0) out += "objects: " + Number(info.nObjectCount) + "\n";
    return out;
}

}    // namespace zkey
