// Two or three records of any contents over small memories, one laid over the other at any place, as pictures and as frames.
// Nothing behind or before the target may change, the overlay and the mask never do, and a failure leaves the target. The first
// bytes say how; then come the records (see `RecordOf`); the rest is pixels and, for frames, the text of the options up to the
// first zero.
#include <algorithm>
#include <cstring>

#include "frames/factory/factory.h"
#include "frames/views/f_factory.h"
#include "frames/views/frames_i.h"
#include "fuzz/support/foreign_text.h"
#include "fuzz/support/picture_input.h"
#include "imaging/mix/overlay_picture.h"
#include "platform/com_ptr.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;
using fuzz::Input;
using fuzz::Record;

constexpr size_t kGuard = 64;
constexpr uint8_t kFill = 0xA5;

struct Case {
    uint8_t work;
    double opacity;
    int32_t x;
    int32_t y;
    Record target;
    Record over;
    Record mask;
    Bytes memory;    // the target between guards
    Bytes pixels;
    Bytes opacities;

    uint8_t *Target() { return memory.data() + kGuard; }
};

constexpr eZInterlace kInterlace[] = {eZI_Progressive, eZI_Field1First, eZI_Field2First};

Record ScannedRecordOf(Input &in) {
    Record r = fuzz::RecordOf(in);
    const uint8_t format = in.Next();
    if (format >= 160) r.props.eVideoFormat = static_cast<eZVideoFormat>(format - 160);
    if (format % 4 == 1) r.props.eInterlace = kInterlace[format % 3];
    return r;
}

int32_t PlaceOf(Input &in) {
    const uint8_t b = in.Next();
    return b >= 240 ? fuzz::kOdd[b % std::size(fuzz::kOdd)] : b - 100;
}

void Check(Case &c, const Bytes &before, HRESULT hr) {
    fuzz::Require(hr <= S_OK || hr == S_FALSE, "a status or a failure");
    const auto guarded = [&](size_t from) {
        return std::all_of(c.memory.begin() + static_cast<std::ptrdiff_t>(from),
                           c.memory.begin() + static_cast<std::ptrdiff_t>(from + kGuard), [](uint8_t b) { return b == kFill; });
    };
    fuzz::Require(guarded(0), "nothing before the target changes");
    fuzz::Require(guarded(kGuard + c.target.bytes), "nothing behind the target changes");
    fuzz::Require(hr == S_OK || c.memory == before, "a failure leaves the target");
}

// One time the overlay is a part of the target's own memory: the bytes are those of separate memories.
void Pictures(Case &c) {
    const Bytes before = c.memory;
    const auto bytes = static_cast<int64_t>(c.target.bytes);
    const MixTarget target = {c.target.props, c.Target(), bytes};
    if ((c.work & 4) == 0) {
        const MixOverlay over = {c.over.props, c.pixels.data(), static_cast<int64_t>(c.pixels.size())};
        Check(c, before, OverlayPicture(target, over, c.x, c.y, c.opacity));
        return;
    }
    const int64_t start = std::min<int64_t>(c.work >> 3, bytes);
    const Bytes apart(c.Target() + start, c.Target() + bytes);
    Bytes twin(c.Target(), c.Target() + bytes);
    const MixOverlay own = {c.over.props, c.Target() + start, bytes - start};
    const MixOverlay other = {c.over.props, apart.data(), bytes - start};
    const HRESULT hr = OverlayPicture(target, own, c.x, c.y, c.opacity);
    const HRESULT separate = OverlayPicture({c.target.props, twin.data(), bytes}, other, c.x, c.y, c.opacity);
    Check(c, before, hr);
    fuzz::Require(hr == separate, "shared memory answers the same");
    fuzz::Require(std::equal(twin.begin(), twin.end(), c.Target()), "shared memory gives the same bytes");
}

ComPtr<IZFFrame> Wrapped(IZFFactory *factory, Record &record, uint8_t *memory, size_t bytes) {
    ComPtr<IZFFrame> frame;
    const auto address = static_cast<int64_t>(reinterpret_cast<uintptr_t>(memory));
    const HRESULT hr = factory->ZFFrameWrap(&record.props, static_cast<int32_t>(bytes), address, nullptr, frame.Put());
    fuzz::Require(hr == S_OK, "memory becomes a frame");
    return frame;
}

void Frames(Case &c, const Input &in) {
    static ComPtr<IZFFactory> s_factory;
    if (!s_factory) fuzz::Require(FrameFactoryCreate(ZIidOf<IZFFactory>(), s_factory.PutVoid()) == S_OK, "a factory");
    const auto under = Wrapped(s_factory.get(), c.target, c.Target(), c.target.bytes);
    const auto over = Wrapped(s_factory.get(), c.over, c.pixels.data(), c.pixels.size());
    const auto mask =
        (c.work & 4) != 0 ? Wrapped(s_factory.get(), c.mask, c.opacities.data(), c.opacities.size()) : ComPtr<IZFFrame>();
    const auto length = static_cast<size_t>(std::find(in.data, in.data + in.size, 0) - in.data);
    const Bstr options(fuzz::TextOfBytes(in.data, length));
    const int32_t flags = c.work >> 4 << 12;
    // The second time with what was kept.
    for (int i = 0; i < 2; ++i) {
        const Bytes before = c.memory;
        const HRESULT hr = under->ZFOverlay(over.get(), mask.get(), c.x, c.y, c.opacity, options.get(), 0, flags);
        under->ZFAsyncWait();
        Check(c, before, hr);
    }
    const Bytes before = c.memory;
    const auto plain = QueryFor<IZFrame>(over.get());
    Check(c, before, QueryFor<IZFrame>(under.get())->FrameOverlay(plain.get(), c.x, c.y, c.opacity, nullptr));
}

void Walk(const uint8_t *data, size_t size) {
    Input in = {data, size};
    Case c;
    c.work = in.Next();
    const uint8_t opacity = in.Next();
    c.opacity = opacity >= 250 ? (opacity - 252) * 1e200 : opacity / 200.0;
    c.x = PlaceOf(in);
    c.y = PlaceOf(in);
    c.target = ScannedRecordOf(in);
    c.over = ScannedRecordOf(in);
    c.mask = ScannedRecordOf(in);
    c.memory.assign(c.target.bytes + 2 * kGuard, kFill);
    for (size_t i = 0; i < c.target.bytes; ++i) c.Target()[i] = static_cast<uint8_t>(i * 29 + 3);
    c.pixels = fuzz::PixelsOf(in, c.over.bytes);
    c.opacities = fuzz::PixelsOf(in, c.mask.bytes);
    const Bytes before = c.pixels;
    const Bytes mask = c.opacities;
    if (c.work % 4 < 2)
        Pictures(c);
    else
        Frames(c, in);
    fuzz::Require(c.pixels == before, "the overlay stays");
    fuzz::Require(c.opacities == mask, "the mask stays");
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk(data, size);
    return 0;
}
