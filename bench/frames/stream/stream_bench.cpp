// Frames stored and loaded: 10 MB of sound and as much data, which is what crosses, against plain copies of as many bytes.
// Counters: `copies`, in processor time of one run.
#include "bench/measure.h"
#include "frames/factory/factory.h"
#include "frames/object/address.h"
#include "frames/views/f_frame.h"
#include "frames/views/frame_i.h"
#include "frames/views/frames_i.h"
#include "platform/com_ptr.h"
#include "platform/text.h"

namespace zck {
namespace {

constexpr int32_t kSound = 10 << 20;
constexpr int32_t kData = 10 << 20;

ComPtr<IZFrame_I> Frame(int32_t sound) {
    ComPtr<IZFrames_I> factory;
    ComPtr<IZFrame_I> frame;
    FrameFactoryCreate(ZIidOf<IZFrames_I>(), factory.PutVoid());
    factory->FrameAlloc(0, sound, nullptr, frame.Put());
    return frame;
}

ComPtr<IZFrame_I> Loaded() {
    const std::vector<uint8_t> noise = bench::Noise(kSound);
    const ComPtr<IZFrame_I> frame = Frame(0);
    frame->FrameAudioReset(kSound, AddressOf(noise.data()));
    for (int i = 0; i < 10; ++i) frame->FrameDataSet(0x30303030 + i, kData / 10, AddressOf(noise.data()));
    return frame;
}

template <class Work>
void Measured(benchmark::State &state, Work work) {
    bench::Samples ours;
    bench::Samples copies;
    bench::CopiedFrames copied(kSound + kData);
    std::size_t round = 0;
    for ([[maybe_unused]] auto _ : state) {
        ours.Time([&] {
            if (FAILED(work())) state.SkipWithError("refused");
        });
        copies.Time([&] { copied.Copy(round++); });
    }
    state.counters["copies"] = ours.Processor() / copies.Processor();
}

void SaveStream(benchmark::State &state) {
    const ComPtr<IZFrame_I> frame = Loaded();
    Measured(state, [&] {
        ComPtr<IUnknown> stream;
        return frame->ZFSaveToStream(stream.Put(), eZFC_Data_Audio);
    });
}

void LoadStream(benchmark::State &state) {
    ComPtr<IUnknown> stored;
    Loaded()->ZFSaveToStream(stored.Put(), eZFC_Data_Audio);
    const auto stream = QueryFor<IStream>(stored.get());
    const ComPtr<IZFrame_I> frame = Frame(0);
    Measured(state, [&] {
        stream->Seek({}, STREAM_SEEK_SET, nullptr);
        return frame->ZFLoadFromStream(stream.get(), eZFC_Data_Audio);
    });
}

void SaveBlock(benchmark::State &state) {
    const ComPtr<IZFrame_I> frame = Loaded();
    const auto wide = QueryFor<IZFFrame>(frame.get());
    Measured(state, [&] {
        int32_t size = 0;
        int64_t block = 0;
        const HRESULT hr = wide->ZFSaveAll(&size, &block, eZFC_Data_Audio);
        CoTaskMemFree(PointerFrom<void>(block));
        return hr;
    });
}

void LoadBlock(benchmark::State &state) {
    int32_t size = 0;
    int64_t block = 0;
    QueryFor<IZFFrame>(Loaded().get())->ZFSaveAll(&size, &block, eZFC_Data_Audio);
    const ComPtr<IZFrame_I> frame = Frame(0);
    const auto wide = QueryFor<IZFFrame>(frame.get());
    Measured(state, [&] { return wide->ZFLoadAll(size, block, eZFC_Data_Audio); });
    CoTaskMemFree(PointerFrom<void>(block));
}

BENCHMARK(SaveStream)->Name("stream/save");
BENCHMARK(LoadStream)->Name("stream/load");
BENCHMARK(SaveBlock)->Name("stream/save-block");
BENCHMARK(LoadBlock)->Name("stream/load-block");

}    // namespace
}    // namespace zck

int main(int argc, char **argv) { return zck::bench::Main(argc, argv); }
