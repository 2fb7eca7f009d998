// The keying engine alone: rows of a source frame fetched, keyed, smoothed, merged and multiplied into a result frame, against
// a plain copy of a 32-bit frame of that size. Copy and engine take turns in one loop, over rings of frames that are larger
// than the caches, so that their ratio holds when the machine's speed drifts.
//
// Counters: fps, copy_ms and key_ms (medians), ratio (engine over copy), and cpu: the processor time of all threads over that
// of the copy, which a machine that is busy with other things still shows; with two threads about half of it is to be waited
// for.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "frames/media/pixel_format.h"
#include "imaging/colour/convert.h"
#include "keying/slices/slices.h"
#include "tests/scene/scene.h"

namespace zck {
namespace {

constexpr int kRing = 6;
constexpr int kWarmUp = 8;

struct Setup {
    int width;
    int height;
    eZFCC fcc;
    eCK_Type type;
    int keys;
    int smooth;
    int threads;
    bool fields;
    bool spill = false;
};

CHROMA_KEY_RAW KeyOf(const Setup &setup) {
    CHROMA_KEY_RAW key = {};
    key.eType = setup.type;
    key.nKeysUsed = setup.keys;
    const uint32_t screen = SceneScreenColour(SceneScreen::Green);
    for (int i = 0; i < setup.keys; ++i) {
        SINGLE_KEY &k = key.arrKeys[i];
        k.nValue = setup.type == eCKT_HLS ? 0x00A06055
                                          : static_cast<int32_t>(((screen & 0xFF) << 16) | (screen & 0xFF00) | (screen >> 16));
        k.nValue -= i * 0x1000;
        k.nDelta = setup.type == eCKT_HLS ? 0x00602818 : 0x00303430;
        k.nSmoothRange = 26;
    }
    if (setup.spill) {
        // The defaults: colours 0.3 of the range, their strengths as shares of that.
        key.bColorCancel = 1;
        for (int i = 0; i < setup.keys; ++i) {
            SINGLE_KEY &k = key.arrKeys[i];
            k.nCancelRange = 76;
            k.nCancelPower = 23;
            k.nCancelChroma = -19;
            k.nCancelLuma = k.nCancelAlpha = -4;
        }
    }
    key.nMinTransparent = setup.smooth > 0 ? 102 : 0;
    key.nMaxTransparent = setup.smooth > 0 ? 230 : 255;
    key.nEdgesSmooth = setup.smooth;
    return key;
}

Z_VID_PROPS PropsOf(const Setup &setup, eZFCC fcc) {
    Z_VID_PROPS props = {};
    props.fccType = fcc;
    props.nWidth = setup.width;
    props.nHeight = IsRgbFormat(fcc) ? -setup.height : setup.height;
    props.nRowBytes = RowBytes(fcc, setup.width);
    props.eInterlace = setup.fields ? eZI_Field1First : eZI_Progressive;
    return props;
}

using Bytes = std::vector<uint8_t>;

struct Rows {
    const ConvertPlan *plan;
    const uint8_t *source;
    uint8_t *target;
    static const uint8_t *View(void *context, int32_t row) {
        const auto &rows = *static_cast<const Rows *>(context);
        return rows.source + rows.plan->SourceOffset(row);
    }
    static HRESULT Fetch(void *context, int32_t row, uint8_t *) {
        const auto &rows = *static_cast<const Rows *>(context);
        rows.plan->RunRows(rows.source, rows.target, row, row + 1);
        return S_OK;
    }
};

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

class Engine {
public:
    explicit Engine(const Setup &setup) : m_props(PropsOf(setup, eZFCC_ARGB32)), m_key(KeyOf(setup)) {
        const Z_VID_PROPS source = PropsOf(setup, setup.fcc);
        m_plan.Prepare(&source, &m_props);
        m_sameFormat = setup.fcc == eZFCC_ARGB32;
        m_pool.SetThreadCount(setup.threads);
        SceneParams scene;
        scene.width = setup.width;
        scene.height = setup.height;
        const size_t pixels = static_cast<size_t>(setup.width) * static_cast<size_t>(setup.height);
        for (int i = 0; i < kRing; ++i) {
            const ScenePicture picture = RenderScene(scene, i);
            Bytes bytes(static_cast<size_t>(source.nRowBytes) * static_cast<size_t>(setup.height));
            ConvertSameGeometry(picture.pixels.data(), bytes.data(), &m_props, &source);
            m_sources.push_back(std::move(bytes));
            m_targets.emplace_back(4 * pixels, uint8_t{1});
        }
        m_alpha.resize(pixels);
    }
    HRESULT Run(size_t slot) {
        Rows rows{&m_plan, m_sources[slot].data(), m_targets[slot].data()};
        // A frame of the result's format is read where it stands, any other is converted by row.
        const RowSource source{&rows, Rows::Fetch, m_sameFormat ? Rows::View : nullptr};
        return m_pool.Dispatch(m_targets[slot].data(), m_alpha.data(), &m_props, &m_key, true, false, &source);
    }

private:
    Z_VID_PROPS m_props;
    CHROMA_KEY_RAW m_key;
    ConvertPlan m_plan;
    bool m_sameFormat = false;
    CSliceThreads m_pool;
    std::vector<Bytes> m_sources;
    std::vector<Bytes> m_targets;
    Bytes m_alpha;
};

void Frames(benchmark::State &state, const Setup &setup) {
    using Clock = std::chrono::steady_clock;
    const auto seconds = [](Clock::duration d) { return std::chrono::duration<double>(d).count(); };
    Engine engine(setup);
    const size_t bytes = 4 * static_cast<size_t>(setup.width) * static_cast<size_t>(setup.height);
    const std::vector<Bytes> from(kRing, Bytes(bytes, 1));
    std::vector<Bytes> to(kRing, Bytes(bytes, 2));
    size_t index = 0;
    for (; index < kWarmUp; ++index) {
        if (FAILED(engine.Run(index % kRing))) state.SkipWithError("the engine refused the frame");
    }
    std::vector<double> copies;
    std::vector<double> keyed;
    std::vector<double> copiesCpu;
    std::vector<double> keyedCpu;
    for ([[maybe_unused]] auto _ : state) {
        const size_t slot = index++ % kRing;
        const std::clock_t startCpu = std::clock();
        const auto start = Clock::now();
        std::memcpy(to[slot].data(), from[slot].data(), bytes);
        benchmark::ClobberMemory();
        const auto begin = Clock::now();
        const std::clock_t beginCpu = std::clock();
        engine.Run(slot);
        const auto end = Clock::now();
        copiesCpu.push_back(static_cast<double>(beginCpu - startCpu));
        keyedCpu.push_back(static_cast<double>(std::clock() - beginCpu));
        copies.push_back(seconds(begin - start));
        keyed.push_back(seconds(end - begin));
        state.SetIterationTime(keyed.back());
    }
    const double copy = Median(copies);
    const double key = Median(keyed);
    state.counters["fps"] = 1.0 / key;
    state.counters["copy_ms"] = 1e3 * copy;
    state.counters["key_ms"] = 1e3 * key;
    state.counters["ratio"] = key / copy;
    state.counters["cpu"] = Median(keyedCpu) / Median(copiesCpu);
}

void Register(const Setup &setup) {
    const std::string name = std::string(setup.fcc == eZFCC_HDYC ? "HDYC" : "BGRA") + "/" + std::to_string(setup.height) +
                             (setup.fields ? "i/" : "p/") + (setup.type == eCKT_HLS ? "HLS" : "RGB") +
                             "/keys:" + std::to_string(setup.keys) + "/smooth:" + std::to_string(setup.smooth) +
                             (setup.spill ? "/spill" : "") + "/threads:" + std::to_string(setup.threads);
    benchmark::RegisterBenchmark(name.c_str(), [setup](benchmark::State &state) { Frames(state, setup); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(setup.height > 1080 ? 60 : 200);
}

}    // namespace
}    // namespace zck

int main(int argc, char **argv) {
    for (const int height : {1080, 2160}) {
        const int width = height * 16 / 9;
        for (const int threads : {1, 2}) {
            for (const int keys : {1, 2, 4}) {
                for (const int smooth : {0, 3})
                    zck::Register({width, height, eZFCC_ARGB32, eCKT_RGB, keys, smooth, threads, false});
            }
            zck::Register({width, height, eZFCC_ARGB32, eCKT_HLS, 1, 3, threads, false});
            zck::Register({width, height, eZFCC_ARGB32, eCKT_HLS, 1, 3, threads, false, true});
            zck::Register({width, height, eZFCC_ARGB32, eCKT_RGB, 1, 0, threads, false, true});
            zck::Register({width, height, eZFCC_HDYC, eCKT_RGB, 1, 0, threads, false});
            zck::Register({width, height, eZFCC_ARGB32, eCKT_RGB, 1, 3, threads, true});
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
