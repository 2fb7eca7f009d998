// Sound: splitting, joining, gain and levels. Counters, all in processor time: `ref`, `vec`, `copy` in nanoseconds a sample of
// a channel, `gain` (ref over vec), `copies` (vec over a copy of the same interleaved block). Blocks of 40 ms as they come with
// a picture, and of 10 s.
#include <cstring>
#include <string>

#include "bench/measure.h"
#include "frames/audio/audio_work.h"
#include "frames/media/audio_props.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;
constexpr int32_t kRate = 48000;

/// One block many times, so that the clock has something to measure.
struct Load {
    Z_AUD_PROPS props;
    int64_t samples;
    int repeats;
    Bytes block;
    Bytes copy;
    ZChannelsBuffer channels;
    std::vector<void *> pointers;

    Load(int32_t count, int32_t bits, int64_t n)
        : props{count, kRate, bits, 0},
          samples(n),
          repeats(static_cast<int>(std::max<int64_t>(1, 500000 / (n * count)))),
          block(bench::Noise(static_cast<size_t>(AudioBytes(&props, n)))),
          copy(block.size()) {
        // Not-a-number and what is close to 0 would cost more than sound does.
        if (bits < 0) {
            for (size_t i = 0; i < block.size(); i += 4) {
                const float value = static_cast<float>(block[i]) / 256 - 0.5F;
                std::memcpy(&block[i], &value, sizeof(value));
            }
        }
        channels.FromInterleaved(&props, static_cast<int64_t>(block.size()), block.data(), {}, -1);
        for (int32_t c = 0; c < count; ++c) pointers.push_back(channels.Channel(c));
    }

    int Stored() const { return static_cast<int>(StoredFormOf(props.nBitsPerSample)); }
    int Work() const { return static_cast<int>(WorkFormOf(props.nBitsPerSample)); }
    int64_t Stride() const { return int64_t{StoredBytes(StoredFormOf(props.nBitsPerSample))} * props.nChannels; }
    double Samples() const { return static_cast<double>(samples) * props.nChannels * repeats; }
};

using LoadWork = void (*)(Load &load, const SampleKernels &kernels);

void Split(Load &load, const SampleKernels &kernels) {
    kernels.split[load.Stored()][load.Work()](load.pointers.data(), load.props.nChannels, load.block.data(), load.Stride(),
                                              load.samples);
}

void Join(Load &load, const SampleKernels &kernels) {
    kernels.join[load.Stored()][load.Work()](load.copy.data(), load.Stride(), load.pointers.data(), load.props.nChannels,
                                             load.samples);
}

void Gain(Load &load, const SampleKernels &kernels) {
    for (void *channel : load.pointers) {
        // 1, so that the sound stays.
        if (load.Work() == static_cast<int>(WorkForm::Float32))
            kernels.gain32(static_cast<float *>(channel), load.samples, 1.0F);
        else
            kernels.gain16(static_cast<int16_t *>(channel), load.samples, 256, 8);
    }
}

void Run(benchmark::State &state, LoadWork work, Load &load) {
    SampleKernels ref = {};
    SampleKernelsInitRef(&ref);
    const double enough = bench::Quick() ? 0.02 : 0.25;
    bench::Samples copies, refs, vecs;
    const auto time = [&](bench::Samples &into, auto &&once) {
        into.Time([&] {
            for (int i = 0; i < load.repeats; ++i) {
                once();
                benchmark::ClobberMemory();
            }
        });
    };
    for ([[maybe_unused]] auto _ : state) {
        for (size_t round = 0; round < 3 || copies.Total() + refs.Total() + vecs.Total() < enough; ++round) {
            time(copies, [&] { std::memcpy(load.copy.data(), load.block.data(), load.block.size()); });
            time(refs, [&] { work(load, ref); });
            time(vecs, [&] { work(load, SampleKernelsGet()); });
        }
    }
    state.counters["ref"] = 1e9 * refs.Processor() / load.Samples();
    state.counters["vec"] = 1e9 * vecs.Processor() / load.Samples();
    state.counters["copy"] = 1e9 * copies.Processor() / load.Samples();
    state.counters["gain"] = refs.Processor() / vecs.Processor();
    state.counters["copies"] = vecs.Processor() / copies.Processor();
}

void RunLevels(benchmark::State &state, int32_t bits, int64_t samples) {
    Load load(2, bits, samples);
    Z_AUDIO_LOUDNESS loudness = {};
    bench::Samples times;
    const AudioBlock audio{load.props, load.block.data(), static_cast<uint32_t>(load.block.size())};
    for ([[maybe_unused]] auto _ : state) {
        for (size_t round = 0; round < 3 || times.Total() < (bench::Quick() ? 0.02 : 0.25); ++round) {
            times.Time([&] {
                for (int i = 0; i < load.repeats; ++i) LoudnessMeasure(audio, loudness);
            });
        }
    }
    state.counters["vec"] = 1e9 * times.Processor() / load.Samples();
}

/// Sixteen channels of 24 bits along a picture: split, levels and join, in hundredths of the picture's 40 ms as `vec`.
void RunPicture(benchmark::State &state) {
    Load load(16, 24, 1920);
    Z_AUDIO_LOUDNESS loudness = {};
    bench::Samples times;
    const AudioBlock audio{load.props, load.block.data(), static_cast<uint32_t>(load.block.size())};
    for ([[maybe_unused]] auto _ : state) {
        for (size_t round = 0; round < 3 || times.Total() < (bench::Quick() ? 0.02 : 0.25); ++round) {
            times.Time([&] {
                // Levels split for themselves.
                LoudnessMeasure(audio, loudness);
                Join(load, SampleKernelsGet());
            });
        }
    }
    state.counters["vec"] = 100 * times.Processor() / 0.04;
}

void Register() {
    const struct {
        const char *name;
        LoadWork work;
    } works[] = {{"split", Split}, {"join", Join}, {"gain", Gain}};
    const struct {
        const char *name;
        int32_t bits;
    } forms[] = {{"16", 16}, {"24", 24}, {"32", 32}, {"float", -32}};
    const struct {
        const char *name;
        int64_t samples;
    } lengths[] = {{"40ms", 1920}, {"10s", 480000}};
    for (const auto &length : lengths) {
        for (const auto &form : forms) {
            for (const auto &work : works) {
                for (const int32_t channels : {2, 16}) {
                    const std::string name = std::string("audio/") + work.name + "/" + form.name + "/" +
                                             std::to_string(channels) + "ch/" + length.name;
                    const int64_t samples = length.samples * 2 / channels;
                    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
                        Load load(channels, form.bits, samples);
                        Run(state, work.work, load);
                    })->Iterations(1);
                }
            }
            const std::string name = std::string("audio/levels/") + form.name + "/" + length.name;
            benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
                RunLevels(state, form.bits, length.samples);
            })->Iterations(1);
        }
    }
    benchmark::RegisterBenchmark("audio/picture/24/16ch (% of 40 ms)", RunPicture)->Iterations(1);
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    zck::Register();
    return zck::bench::Main(argc, argv);
}
