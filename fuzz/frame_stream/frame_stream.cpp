// Stored frames: both forms under any flags, from streams that give little at a time, with a section of another size planted.
//
// The first byte chooses how much a read gives, the next four are the flags of the load, the rest is a frame without the mark
// of the stream form. Where the section's number is "SECTION!", that of a real one stands.
#include <cstring>
#include <vector>

#include "frames/factory/factory.h"
#include "frames/media/video_props.h"
#include "frames/object/address.h"
#include "frames/views/f_frame.h"
#include "frames/views/frames_i.h"
#include "fuzz/support/foreign_text.h"
#include "platform/memory_stream.h"
#include "tests/support/byte_stream.h"

namespace zck {
namespace {

constexpr size_t kHead = 5;
constexpr size_t kSectionAt = 8;    // of its number in the block form
constexpr int32_t kNamed = eZFC_Data_Audio;

IZFrames_I *Frames() {
    static ComPtr<IZFrames_I> s_frames;
    if (!s_frames) {
        fuzz::Require(FrameFactoryCreate(ZIidOf<IZFrames_I>(), s_frames.PutVoid()) == S_OK, "a factory is made");
    }
    return s_frames.get();
}

ComPtr<IZFrame_I> Frame(int32_t bytes) {
    ComPtr<IZFrame_I> frame;
    fuzz::Require(Frames()->FrameAlloc(bytes, 0, nullptr, frame.Put()) == S_OK, "a frame is made");
    return frame;
}

/// A section of some thousand bytes.
IZFrame_I *Planted() {
    static ComPtr<IZFrame_I> s_frame = Frame(4096);
    return s_frame.get();
}

/// A frame that borrows maps what it loads, another one copies.
ComPtr<IZFrame_I> Target(bool borrows) {
    if (!borrows) return Frame(64);
    ComPtr<IZFrame> clone;
    fuzz::Require(Planted()->FrameClone(clone.Put(), eZFC_Reference, eZFCC_Default) == S_OK, "a clone is made");
    return QueryFor<IZFrame_I>(clone.get());
}

std::string Stored(IZFrame_I *frame) {
    const ByteStream stream;
    fuzz::Require(frame->ZFAddToStream(stream.stream.get(), kNamed) == S_OK, "a frame is stored");
    return stream.object->m_bytes;
}

void Sum(int64_t address, int32_t size) {
    volatile uint8_t sum = 0;
    fuzz::Require(size >= 0, "a block has a size");
    for (int32_t i = 0; i < size; ++i) sum = static_cast<uint8_t>(sum + PointerFrom<const uint8_t>(address)[i]);
}

/// Every byte that the frame hands out is read, and every name is found.
void Walk(IZFrame_I *frame) {
    const auto wide = QueryFor<IZFFrame>(frame);
    ZF_INFO info = {};
    fuzz::Require(wide->ZFInfoGet(&info) == S_OK, "a frame tells of itself");
    Sum(info.pbVideo, info.pbVideo != 0 ? info.cbVideo : 0);
    Sum(info.pbAudio, info.cbAudio);
    for (int32_t i = 0; i < info.nDataCount; ++i) {
        Bstr name;
        int32_t size = -1;
        int32_t found = -1;
        int64_t at = 0;
        fuzz::Require(wide->ZFDataGetByIndex(i, name.Put(), &size, &at) == S_OK, "an entry is there");
        if (size > 0) Sum(at, size);
        fuzz::Require(wide->ZFDataGet(name.get(), &found, &at) == S_OK && found == size, "an entry is found by its name");
    }
    for (int32_t i = 0; i < info.nTextCount; ++i) {
        Bstr name;
        Bstr text;
        Bstr found;
        fuzz::Require(wide->ZFTextGetByIndex(i, name.Put(), text.Put()) == S_OK, "a text is there");
        fuzz::Require(wide->ZFTextGet(name.get(), found.Put()) == S_OK && found.view() == text.view(), "a text is found");
    }
    int32_t size = 0;
    int64_t block = 0;
    fuzz::Require(wide->ZFSaveAll(&size, &block, eZFC_Full) == S_OK && size % 32 == 0, "a frame becomes a block");
    fuzz::Require(Target(false).get() != nullptr, "a frame is made");
    const auto again = Target(false);
    const HRESULT hr = QueryFor<IZFFrame>(again.get())->ZFLoadAll(size, block, eZFC_Data_Audio);
    fuzz::Require(hr == S_OK, "a block is loaded");
    CoTaskMemFree(PointerFrom<void>(block));
}

HRESULT LoadStream(IZFrame_I *frame, const std::string &bytes, int32_t flags, size_t most) {
    const ByteStream stream("ZFRM" + bytes);
    stream.object->m_most = most;
    stream.object->m_seeks = most != 3;
    const HRESULT hr = frame->ZFLoadFromStream(stream.stream.get(), flags);
    fuzz::Require(hr == S_OK || hr == E_FAIL || hr == kErrorAccessDenied || hr == E_OUTOFMEMORY || hr == E_UNEXPECTED ||
                      hr == StatusOf(0x80070026) || hr == kErrorFileNotFound || hr == StatusOf(0x80030001),
                  "a status out of the list");
    return hr;
}

HRESULT LoadBlock(IZFrame_I *frame, const std::string &bytes, int32_t flags) {
    const HRESULT hr = QueryFor<IZFFrame>(frame)->ZFLoadAll(static_cast<int32_t>(bytes.size()), AddressOf(bytes.data()), flags);
    fuzz::Require(hr == S_OK || hr == E_INVALIDARG || hr == E_OUTOFMEMORY || hr == E_UNEXPECTED || hr == StatusOf(0x80070026) ||
                      hr == kErrorFileNotFound,
                  "a status out of the list");
    return hr;
}

void Walk(size_t most, int32_t flags, std::string bytes) {
    int64_t section = 0;
    fuzz::Require(Planted()->FrameBufferIdGet(&section) == S_OK, "a section has a number");
    if (bytes.size() >= kSectionAt + 8 && bytes.compare(kSectionAt, 8, "SECTION!") == 0) {
        std::memcpy(bytes.data() + kSectionAt, &section, sizeof(section));
    }
    for (const bool borrows : {false, true}) {
        const auto whole = Target(borrows);
        const HRESULT hr = LoadStream(whole.get(), bytes, flags, SIZE_MAX);
        Walk(whole.get());
        const std::string stored = Stored(whole.get());
        const auto pieces = Target(borrows);
        const HRESULT piecewise = LoadStream(pieces.get(), bytes, flags, most);
        // A stream that cannot seek cannot pass sound over.
        if (most != 3) fuzz::Require(piecewise == hr && Stored(pieces.get()) == stored, "small reads read the same");
        const auto block = Target(borrows);
        const HRESULT ofBlock = LoadBlock(block.get(), bytes, flags);
        Walk(block.get());
        if (hr == S_OK) fuzz::Require(ofBlock == S_OK && Stored(block.get()) == stored, "both forms say the same");
        const auto again = Target(borrows);
        fuzz::Require(LoadStream(again.get(), stored.substr(4), kNamed, most) == S_OK, "what was stored is loaded");
        fuzz::Require(Stored(again.get()) == stored, "and stored as it was");
    }
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < zck::kHead) return 0;
    int32_t flags = 0;
    std::memcpy(&flags, data + 1, sizeof(flags));
    zck::Walk(1 + data[0] % 8, flags, std::string(data + zck::kHead, data + size));
    return 0;
}
