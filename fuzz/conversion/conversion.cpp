// Two records of any contents over two small memories, converted as buffers and as frames. Nothing behind or before a target
// may change, a source never does, a failure gives no frame, and a frame that comes holds what it states. The first bytes say
// how; then come the records (see `RecordOf`) and what a record has besides; the rest is the source's pixels and, for
// frames, the text of the options up to the first zero.
#include <algorithm>
#include <cstring>

#include "frames/factory/factory.h"
#include "frames/media/video_props.h"
#include "frames/views/f_factory.h"
#include "frames/views/frames_i.h"
#include "fuzz/support/foreign_text.h"
#include "fuzz/support/picture_input.h"
#include "imaging/convert/convert_bits.h"
#include "imaging/convert/frame_picture.h"
#include "imaging/convert/frames_converter.h"
#include "platform/com_ptr.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;
using fuzz::Input;
using fuzz::Record;

constexpr size_t kGuard = 64;

// What no engine looks at.
Record WholeRecordOf(Input &in) {
    Record r = fuzz::RecordOf(in);
    const uint8_t stereo = in.Next();
    if (stereo >= 192) r.props.e3DFormat = static_cast<eZ3DFormat>((stereo & 15) << 8);
    const uint8_t format = in.Next();
    if (format >= 160) r.props.eVideoFormat = static_cast<eZVideoFormat>(format - 160);
    constexpr double kRates[] = {0, 25, 29.970029970029973, -1};
    r.props.dblRate = kRates[in.Next() % 4];
    return r;
}

struct Case {
    uint8_t work;
    int32_t quality;
    Record source;
    Record target;
    Bytes pixels;
};

EngineSource SourceOf(const Case &c) { return {c.pixels.data(), static_cast<int64_t>(c.pixels.size()), &c.source.props}; }

void Buffers(const Case &c, FramesConverter &converter) {
    static FieldConverter s_field;
    Bytes memory[3];
    for (Bytes &m : memory) m.assign(c.target.bytes + 2 * kGuard, 0xA5);
    const auto out = [&](int i, bool wanted) { return wanted ? memory[i].data() + kGuard : nullptr; };
    const auto bytes = static_cast<int64_t>(c.target.bytes);
    HRESULT hr = S_OK;
    if (c.work % 4 == 0) {
        const EngineTarget target = {out(0, (c.work & 16) == 0), out(1, (c.work & 32) != 0), out(2, (c.work & 64) != 0), bytes,
                                     &c.target.props};
        hr = ConvertBits(&s_field, SourceOf(c), target, c.quality, (c.work >> 2) % 4 - 1);
    } else if (c.work % 4 == 1) {
        hr = converter.Convert(SourceOf(c), {out(0, true), nullptr, nullptr, bytes, &c.target.props},
                               (c.work & 16) != 0 ? FieldMode::kFirst : FieldMode::kBoth, c.quality);
    } else {
        hr = converter.Rotate(SourceOf(c), {out(0, true), nullptr, nullptr, bytes, &c.target.props}, (c.work & 16) != 0,
                              (c.work & 32) != 0);
    }
    fuzz::Require(hr <= S_OK || hr == S_FALSE, "a status or a failure");
    const Bytes guard(kGuard, 0xA5);
    for (const Bytes &m : memory) {
        fuzz::Require(std::equal(guard.begin(), guard.end(), m.begin()), "nothing before the target changes");
        fuzz::Require(std::equal(guard.begin(), guard.end(), m.end() - kGuard), "nothing behind the target changes");
    }
}

// A frame over the case's own pixels.
ComPtr<IZFrame> Wrapped(IZFFactory *factory, Case &c) {
    ComPtr<IZFFrame> frame;
    const auto address = static_cast<int64_t>(reinterpret_cast<uintptr_t>(c.pixels.data()));
    const HRESULT hr =
        factory->ZFFrameWrap(&c.source.props, static_cast<int32_t>(c.pixels.size()), address, nullptr, frame.Put());
    fuzz::Require(hr == S_OK, "memory becomes a frame");
    return QueryFor<IZFrame>(frame.get());
}

// Too much of a picture for a fuzzer.
bool Large(const Z_VID_PROPS &wanted, const Z_VID_PROPS &source) {
    Z_VID_PROPS target = {};
    return SUCCEEDED(TargetComplete(&wanted, source, target)) && FrameBufferSize(&target) > (1 << 22);
}

void Frames(Case &c, const Input &in) {
    static ComPtr<IZFrames_I> s_factory;
    if (!s_factory) fuzz::Require(FrameFactoryCreate(ZIidOf<IZFrames_I>(), s_factory.PutVoid()) == S_OK, "a factory");
    if (Large(c.target.props, c.source.props)) return;
    const auto wide = QueryFor<IZFFactory>(s_factory.get());
    const ComPtr<IZFrame> first = Wrapped(wide.get(), c);
    const ComPtr<IZFrame> second = (c.work & 16) != 0 ? Wrapped(wide.get(), c) : nullptr;
    const auto length = static_cast<size_t>(std::find(in.data, in.data + in.size, 0) - in.data);
    const Bstr options(fuzz::TextOfBytes(in.data, length));
    ComPtr<IZFrame> result;
    const HRESULT hr = s_factory->FramesConvert(first.get(), second.get(), &c.target.props, result.Put(), options.get());
    fuzz::Require(SUCCEEDED(hr) == bool(result), "a failure gives no frame");
    if (!result || (c.work & 32) == 0) return;
    // What came out goes in again; a clone that touched no byte may state anything.
    FramePicture picture;
    fuzz::Require(SUCCEEDED(FramePictureGet(QueryFor<IZFrame_I>(result.get()).get(), picture)), "a frame describes itself");
    const bool borrows = picture.video >= c.pixels.data() && picture.video < c.pixels.data() + c.pixels.size();
    fuzz::Require(borrows || picture.Whole(), "a frame holds what it states");
    ComPtr<IZFrame> again;
    if (!Large(c.source.props, picture.Record())) result->FrameConvert(&c.source.props, again.Put(), options.get());
}

void Walk(const uint8_t *data, size_t size) {
    static FramesConverter s_converter;
    Input in = {data, size};
    Case c;
    c.work = in.Next();
    c.quality = static_cast<int8_t>(in.Next());
    c.source = WholeRecordOf(in);
    c.target = WholeRecordOf(in);
    c.pixels = fuzz::PixelsOf(in, c.source.bytes);
    const Bytes before = c.pixels;
    if (c.work % 4 == 3)
        Frames(c, in);
    else
        Buffers(c, s_converter);
    fuzz::Require(c.pixels == before, "the source stays");
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk(data, size);
    return 0;
}
