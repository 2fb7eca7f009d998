// The media path of the keyer, from `OnMediaReceive` to the result frame, against a plain copy of a 32-bit frame of that
// size. Copy and path take turns in one loop, over a ring of frames that is larger than the caches, so that their ratio
// holds when the machine's speed drifts.
//
// Counters: fps (frames per second), copy_ms and path_ms (medians), ratio (path over copy), cpu_ratio (the same in processor
// time of all threads, which stands when other programs run), faults (minor page faults per frame of the path).
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <string>
#include <vector>

#include "tests/scene/scene.h"
#include "zchromakey/zchromakey.h"

namespace {

constexpr int kRing = 6;
constexpr int kWarmUp = 12;

struct Setup {
    int width;
    int height;
    eZFCC fcc;
    eCK_Type type;
    int keys;
    int smooth;
    int threads;
};

/// A counted reference of a host.
template <class T>
class Held {
public:
    Held() = default;
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;
    ~Held() { Reset(); }
    void Reset() {
        if (m_p != nullptr) m_p->Release();
        m_p = nullptr;
    }
    T **Put() {
        Reset();
        return &m_p;
    }
    void **PutVoid() { return reinterpret_cast<void **>(Put()); }
    T *get() const { return m_p; }
    T *operator->() const { return m_p; }

private:
    T *m_p = nullptr;
};

BSTR Text(const std::string &ascii) {
    BSTR text = SysAllocStringLen(nullptr, static_cast<uint32_t>(ascii.size()));
    for (std::size_t i = 0; i < ascii.size(); ++i) text[i] = static_cast<OLECHAR>(ascii[i]);
    return text;
}

void Set(IZProps *props, const char *name, const std::string &value) {
    BSTR bsName = Text(name);
    BSTR bsValue = Text(value);
    props->PropsSet(bsName, bsValue);
    SysFreeString(bsName);
    SysFreeString(bsValue);
}

/// Keys around the screen's colour: the first takes the screen out, the others its lights and shadows.
CHROMA_KEY_RAW KeyOf(const Setup &setup) {
    CHROMA_KEY_RAW key{};
    key.eType = setup.type;
    key.nKeysUsed = setup.keys;
    const uint32_t screen = zck::SceneScreenColour(zck::SceneScreen::Green);
    for (int i = 0; i < setup.keys; ++i) {
        SINGLE_KEY &k = key.arrKeys[i];
        if (setup.type == eCKT_HLS) {
            k.nValue = 0x00A06055 + i * 0x00001000;
            k.nDelta = 0x00602818;
        } else {
            k.nValue = static_cast<int32_t>(((screen & 0xFF) << 16) | (screen & 0xFF00) | (screen >> 16)) - i * 0x00001000;
            k.nDelta = 0x00303430;
        }
        k.nSmoothRange = 26;
    }
    key.nMinTransparent = setup.smooth > 0 ? 102 : 0;
    key.nMaxTransparent = setup.smooth > 0 ? 230 : 255;
    key.nEdgesSmooth = setup.smooth;
    return key;
}

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// Processor time of all threads of this process, in seconds.
double ProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

int64_t MinorFaults() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}

/// One kind of media path, ready to run.
class Path {
public:
    explicit Path(const Setup &setup) {
        Held<IClassFactory> factory;
        DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.PutVoid());
        factory->CreateInstance(nullptr, IID_IZPlugin, m_plugin.PutVoid());
        Held<IZChromaKey> chromaKey;
        m_plugin->QueryInterface(IID_IZChromaKey, chromaKey.PutVoid());
        Held<IZProps> props;
        m_plugin->QueryInterface(IID_IZProps, props.PutVoid());
        Set(props.get(), "output.thread", "false");
        Set(props.get(), "process.threads", std::to_string(setup.threads));
        CHROMA_KEY_RAW key = KeyOf(setup);
        chromaKey->KeyRawSet(&key);
        MakeRing(setup);
    }

    bool Run(int index) {
        m_result.Reset();
        return m_plugin->OnMediaReceive(0, nullptr, m_ring[index % kRing].get(), m_result.Put()) == S_OK;
    }

private:
    void MakeRing(const Setup &setup) {
        ZFramesCreate(IID_IZFrames, m_frames.PutVoid());
        zck::SceneParams scene;
        scene.width = setup.width;
        scene.height = setup.height;
        Z_VID_PROPS props{};
        props.fccType = eZFCC_RGB32;
        props.nWidth = setup.width;
        props.nHeight = -setup.height;
        props.nRowBytes = 4 * setup.width;
        props.eInterlace = eZI_Progressive;
        for (int i = 0; i < kRing; ++i) {
            const zck::ScenePicture picture = zck::RenderScene(scene, i);
            Held<IZFrame> frame;
            m_frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(picture.pixels.data()), frame.Put(), nullptr);
            frame->FrameClone(m_ring[i].Put(), eZFC_Video, setup.fcc);
        }
    }

    Held<IZPlugin> m_plugin;
    Held<IZFrames> m_frames;
    Held<IZFrame> m_ring[kRing];
    Held<IZFrame> m_result;
};

void MediaPath(benchmark::State &state, const Setup &setup) {
    using Clock = std::chrono::steady_clock;
    const auto seconds = [](Clock::duration d) { return std::chrono::duration<double>(d).count(); };
    Path path(setup);
    const std::size_t bytes = 4 * static_cast<std::size_t>(setup.width) * static_cast<std::size_t>(setup.height);
    std::vector<std::vector<uint8_t>> from(kRing, std::vector<uint8_t>(bytes, 1));
    std::vector<std::vector<uint8_t>> to(kRing, std::vector<uint8_t>(bytes, 2));
    std::vector<double> copies;
    std::vector<double> paths;
    std::vector<double> copyWork;
    std::vector<double> pathWork;
    int64_t faults = 0;
    int index = 0;
    for (; index < kWarmUp; ++index)
        if (!path.Run(index)) state.SkipWithError("the keyer refused the frame");
    for (auto _ : state) {
        const auto slot = static_cast<std::size_t>(index % kRing);
        const double startWork = ProcessorTime();
        const auto start = Clock::now();
        std::memcpy(to[slot].data(), from[slot].data(), bytes);
        benchmark::ClobberMemory();
        const auto copied = Clock::now();
        const double copiedWork = ProcessorTime();
        const int64_t before = MinorFaults();
        const auto begin = Clock::now();
        path.Run(index++);
        const auto end = Clock::now();
        faults += MinorFaults() - before;
        pathWork.push_back(ProcessorTime() - copiedWork);
        copyWork.push_back(copiedWork - startWork);
        copies.push_back(seconds(copied - start));
        paths.push_back(seconds(end - begin));
        state.SetIterationTime(paths.back());
    }
    const double copy = Median(copies);
    const double keyed = Median(paths);
    state.counters["fps"] = 1.0 / keyed;
    state.counters["copy_ms"] = 1e3 * copy;
    state.counters["path_ms"] = 1e3 * keyed;
    state.counters["ratio"] = keyed / copy;
    state.counters["cpu_ratio"] = Median(pathWork) / Median(copyWork);
    state.counters["faults"] = static_cast<double>(faults) / static_cast<double>(paths.size());
}

const char *NameOf(eZFCC fcc) {
    switch (fcc) {
        case eZFCC_HDYC:
            return "HDYC";
        case eZFCC_UYVY:
            return "UYVY";
        default:
            return "BGRA";
    }
}

void Register(const Setup &setup) {
    const std::string name = std::string(NameOf(setup.fcc)) + "/" + std::to_string(setup.height) + "p/" +
                             (setup.type == eCKT_HLS ? "HLS" : "RGB") + "/keys:" + std::to_string(setup.keys) +
                             "/smooth:" + std::to_string(setup.smooth) + "/threads:" + std::to_string(setup.threads);
    benchmark::RegisterBenchmark(name.c_str(), [setup](benchmark::State &state) { MediaPath(state, setup); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(setup.height > 1080 ? 60 : 200);
}

}    // namespace

int main(int argc, char **argv) {
    for (const int height : {1080, 2160}) {
        const int width = height * 16 / 9;
        for (const int threads : {1, 2}) {
            for (const int keys : {1, 2, 4})
                for (const int smooth : {0, 3}) Register({width, height, eZFCC_ARGB32, eCKT_RGB, keys, smooth, threads});
            Register({width, height, eZFCC_ARGB32, eCKT_HLS, 1, 3, threads});
            Register({width, height, eZFCC_UYVY, eCKT_RGB, 1, 0, threads});
            Register({width, height, eZFCC_HDYC, eCKT_RGB, 1, 0, threads});
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
