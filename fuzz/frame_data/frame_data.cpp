// Packed ancillary data of a frame: blocks of a four-character code, a length, and that many bytes.
#include <cstring>
#include <vector>

#include "frames/factory/factory.h"
#include "frames/object/address.h"
#include "frames/views/frame_i.h"
#include "fuzz/support/foreign_text.h"
#include "platform/com_ptr.h"
#include "zchromakey/frames.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

IZFrames *Frames() {
    static ComPtr<IZFrames> s_frames;
    if (!s_frames) {
        fuzz::Require(FrameFactoryCreate(IID_IZFrames, reinterpret_cast<void **>(s_frames.Put())) == S_OK, "a factory is made");
    }
    return s_frames.get();
}

ComPtr<IZFrame> Frame() {
    ComPtr<IZFrame> frame;
    fuzz::Require(Frames()->FrameCreate(64, nullptr, frame.Put()) == S_OK, "a frame is made");
    return frame;
}

Bytes Packed(IZFrame *frame, int32_t code) {
    int32_t size = -1;
    int64_t block = 0;
    fuzz::Require(QueryFor<IZFrame_I>(frame)->FrameDataPack(code, &size, &block) == S_OK, "data are packed");
    fuzz::Require(size >= 0 && (size != 0) == (block != 0), "a block has a size");
    Bytes bytes(static_cast<size_t>(size));
    if (size != 0) std::memcpy(bytes.data(), PointerFrom<const void>(block), bytes.size());
    CoTaskMemFree(PointerFrom<void>(block));
    return bytes;
}

void Unpack(IZFrame *frame, const Bytes &bytes) {
    const HRESULT hr = frame->FrameDataSet(0, static_cast<int32_t>(bytes.size()), AddressOf(bytes.data()));
    fuzz::Require(hr == S_OK, "data are unpacked");
}

/// Every byte that a list hands out is read.
int32_t Walk(IZFrame *frame) {
    int32_t count = 0;
    volatile uint8_t sum = 0;
    for (;; ++count) {
        int32_t code = 0;
        int32_t size = -1;
        int64_t address = 0;
        if (FAILED(frame->FrameDataGetByIndex(count, &code, &size, &address))) return count;
        fuzz::Require(size >= 0, "a block has a size");
        const auto *data = PointerFrom<const uint8_t>(address);
        for (int32_t i = 0; i < size; ++i) sum = static_cast<uint8_t>(sum + data[i]);
        int32_t found = -1;
        fuzz::Require(frame->FrameDataGet(code, &found, &address) == S_OK && found == size, "a block is found by its code");
        if (size != 0) fuzz::Require(Packed(frame, code).size() == static_cast<size_t>(size), "one block is packed alone");
    }
}

void Walk(const Bytes &bytes) {
    const ComPtr<IZFrame> frame = Frame();
    Unpack(frame.get(), bytes);
    const int32_t count = Walk(frame.get());
    const Bytes packed = Packed(frame.get(), 0);
    fuzz::Require((count != 0) == !packed.empty(), "all blocks are packed");
    const ComPtr<IZFrame> again = Frame();
    Unpack(again.get(), packed);
    fuzz::Require(Walk(again.get()) == count && Packed(again.get(), 0) == packed, "packed data come back");
    const ComPtr<IZFrame> copy = Frame();
    const HRESULT hr = QueryFor<IZFrame_I>(copy.get())->FrameDataCopyFrom(frame.get(), 2);
    fuzz::Require(hr == (count != 0 ? S_OK : S_FALSE), "data are copied");
    fuzz::Require(Packed(copy.get(), 0) == packed, "a copy is whole");
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk(zck::Bytes(data, data + size));
    return 0;
}
