// The media path of the keyer, from `OnMediaReceive` to the result frame, against a plain copy of a 32-bit frame of that
// size. Copy and path take turns.
//
// Names: format, size, space and number of keys, kind of key, threads. Kinds: `plain` measures and no more; `smooth` is the
// default adjustment with 3 rounds of smoothing and thresholds; `spill` moves spill by blocks, `spillpx` by pixels.
//
// Counters: copy_ms and path_ms (medians), ratio (path over copy), best (the same of the fastest rounds), cpu (the same in
// processor time of all threads, which stands when other programs run), goal (for `ratio`), faults (minor page faults per
// frame of the path). The lines "sizes" compare a pixel of 2160 lines with one of 1080 lines, frames of both in turns.
#include <map>
#include <memory>
#include <vector>

#include "bench/measure.h"
#include "tests/scene/scene.h"
#include "zchromakey/zchromakey.h"

namespace zck::bench {
namespace {

constexpr std::size_t kWarmUp = 2 * kRing;
constexpr std::size_t kPictures = 2;    // that the frames of a ring show: rendering takes far longer than keying

enum class Kind { Plain, Smooth, Spill, SpillPx, SmoothSpill };
constexpr const char *kKindNames[] = {"plain", "smooth", "spill", "spillpx", "smooth+spill"};

struct Format {
    eZFCC fcc;
    const char *name;
};
constexpr Format kFormats[] = {{eZFCC_ARGB32, "BGRA"}, {eZFCC_UYVY, "UYVY"}, {eZFCC_HDYC, "HDYC"}, {eZFCC_YUY2, "YUY2"},
                               {eZFCC_v210, "v210"},   {eZFCC_I420, "I420"}, {eZFCC_NV12, "NV12"}};

struct Setup {
    int height;
    Format format;
    eCK_Type type;
    int keys;
    Kind kind;
    int threads;
    double goal = 0;
    bool fields = false;

    int Width() const { return height * 16 / 9; }
    std::size_t Pixels() const { return static_cast<std::size_t>(Width()) * static_cast<std::size_t>(height); }
    bool Smooths() const { return kind == Kind::Smooth || kind == Kind::SmoothSpill; }
    bool HasSpill() const { return kind >= Kind::Spill; }
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

/// Keys around the screen's colour: the first takes the screen out, the others its lights and shadows. Spill as by default:
/// colours 0.3 of the range, their strengths as shares of that.
CHROMA_KEY_RAW KeyOf(const Setup &setup) {
    CHROMA_KEY_RAW key{};
    key.eType = setup.type;
    key.nKeysUsed = setup.keys;
    key.bColorCancel = setup.kind == Kind::SpillPx ? 2 : setup.HasSpill() ? 1 : 0;
    const uint32_t screen = SceneScreenColour(SceneScreen::Green);
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
        if (!setup.HasSpill()) continue;
        k.nCancelRange = 76;
        k.nCancelPower = 23;
        k.nCancelChroma = -19;
        k.nCancelLuma = k.nCancelAlpha = -4;
    }
    key.nMinTransparent = setup.Smooths() ? 102 : 0;
    key.nMaxTransparent = setup.Smooths() ? 230 : 255;
    key.nEdgesSmooth = setup.Smooths() ? 3 : 0;
    return key;
}

/// The scene at one size, rendered once for all benchmarks.
const std::vector<ScenePicture> &Scene(int width, int height) {
    static std::map<int, std::vector<ScenePicture>> scenes;
    std::vector<ScenePicture> &pictures = scenes[height];
    SceneParams scene;
    scene.width = width;
    scene.height = height;
    while (pictures.size() < kPictures) pictures.push_back(RenderScene(scene, static_cast<int>(pictures.size())));
    return pictures;
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

    bool Run(std::size_t round) {
        m_result.Reset();
        return m_plugin->OnMediaReceive(0, nullptr, m_ring[round % kRing].get(), m_result.Put()) == S_OK;
    }

    bool WarmUp() {
        bool ok = true;
        for (std::size_t i = 0; i < kWarmUp; ++i) ok = Run(i) && ok;
        return ok;
    }

private:
    void MakeRing(const Setup &setup) {
        ZFramesCreate(IID_IZFrames, m_frames.PutVoid());
        Z_VID_PROPS props{};
        props.fccType = eZFCC_RGB32;
        props.nWidth = setup.Width();
        props.nHeight = -setup.height;
        props.nRowBytes = 4 * props.nWidth;
        props.eInterlace = setup.fields ? eZI_Field1First : eZI_Progressive;
        for (std::size_t i = 0; i < kRing; ++i) {
            const ScenePicture &picture = Scene(props.nWidth, setup.height)[i % kPictures];
            Held<IZFrame> frame;
            m_frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(picture.pixels.data()), frame.Put(), nullptr);
            frame->FrameClone(m_ring[i].Put(), eZFC_Video, setup.format.fcc);
        }
    }

    Held<IZPlugin> m_plugin;
    Held<IZFrames> m_frames;
    Held<IZFrame> m_ring[kRing];
    Held<IZFrame> m_result;
};

std::size_t RoundsOf(const Setup &setup) {
    const std::size_t rounds = setup.height > 1080 ? 40 : 120;
    return Quick() ? rounds / 10 : rounds;
}

CopiedFrames &CopiesOf(const Setup &setup) {
    static std::unique_ptr<CopiedFrames> frames;
    static int height = 0;
    if (height != setup.height) {
        frames.reset();
        frames = std::make_unique<CopiedFrames>(4 * setup.Pixels());
        height = setup.height;
    }
    return *frames;
}

void MediaPath(benchmark::State &state, const Setup &setup) {
    Path path(setup);
    CopiedFrames &frames = CopiesOf(setup);
    if (!path.WarmUp()) state.SkipWithError("the keyer refused the frame");
    Samples copies, paths;
    for ([[maybe_unused]] auto _ : state) {
        for (std::size_t round = 0; round < RoundsOf(setup); ++round) {
            copies.Time([&] { frames.Copy(round); });
            paths.Time([&] { path.Run(round); });
        }
    }
    state.counters["copy_ms"] = 1e3 * copies.Wall();
    state.counters["path_ms"] = 1e3 * paths.Wall();
    state.counters["ratio"] = paths.Wall() / copies.Wall();
    state.counters["best"] = paths.BestWall() / copies.BestWall();
    state.counters["cpu"] = paths.Processor() / copies.Processor();
    state.counters["goal"] = setup.goal;
    state.counters["faults"] = paths.Faults();
}

// Both sizes in turns, four small frames to a large one.
void Sizes(benchmark::State &state, const Setup &setup) {
    Setup large = setup;
    large.height = 2 * setup.height;
    Path few(large);
    Path many(setup);
    if (!few.WarmUp() || !many.WarmUp()) state.SkipWithError("the keyer refused the frame");
    Samples smalls, larges;
    for ([[maybe_unused]] auto _ : state) {
        for (std::size_t round = 0; round < RoundsOf(large); ++round) {
            larges.Time([&] { few.Run(round); });
            for (std::size_t i = 0; i < 4; ++i) smalls.Time([&] { many.Run(4 * round + i); });
        }
    }
    state.counters["ratio"] = larges.Wall() / (4 * smalls.Wall());
    state.counters["best"] = larges.BestWall() / (4 * smalls.BestWall());
    state.counters["cpu"] = larges.Processor() / (4 * smalls.Processor());
    state.counters["goal"] = 1.1;
}

std::string NameOf(const Setup &setup, const std::string &size) {
    return std::string(setup.format.name) + "/" + size + "/" +
           (setup.type == eCKT_HLS   ? "HLS"
            : setup.type == eCKT_YUV ? "YUV"
                                     : "RGB") +
           std::to_string(setup.keys) + "/" + kKindNames[static_cast<int>(setup.kind)] + "/" + std::to_string(setup.threads) +
           "t";
}

void Add(const Setup &setup) {
    const std::string size = std::to_string(setup.height) + (setup.fields ? "i" : "p");
    benchmark::RegisterBenchmark(NameOf(setup, size).c_str(), [setup](benchmark::State &state) {
        MediaPath(state, setup);
    })->Iterations(1);
}

void AddSizes(const Setup &setup) {
    benchmark::RegisterBenchmark(NameOf(setup, "sizes").c_str(), [setup](benchmark::State &state) {
        Sizes(state, setup);
    })->Iterations(1);
}

void AddFormats(int height, int threads) {
    const auto goal = [threads](double one, double two) { return threads == 1 ? one : two; };
    for (const Format &format : kFormats) {
        const bool named = format.fcc == eZFCC_ARGB32 || format.fcc == eZFCC_UYVY || format.fcc == eZFCC_HDYC;
        Add({height, format, eCKT_RGB, 1, Kind::Plain, threads, named ? goal(2, 1.5) : 0});
        Add({height, format, eCKT_RGB, 1, Kind::Spill, threads});
        Add({height, format, eCKT_HLS, 1, Kind::SmoothSpill, threads, goal(9, 5.5)});
    }
    const Format &bgra = kFormats[0];
    Add({height, bgra, eCKT_RGB, 4, Kind::Plain, threads, goal(4.5, 2.7)});
    Add({height, bgra, eCKT_RGB, 1, Kind::Smooth, threads, goal(4, 2.7)});
    Add({height, bgra, eCKT_HLS, 1, Kind::Smooth, threads, goal(6.5, 4)});
    Add({height, bgra, eCKT_YUV, 1, Kind::Smooth, threads});
    Add({height, bgra, eCKT_RGB, 1, Kind::SpillPx, threads});
    Add({height, bgra, eCKT_RGB, 1, Kind::Smooth, threads, 0, true});
}

void Register() {
    for (const int height : {1080, 2160}) {
        for (const int threads : {1, 2}) AddFormats(height, threads);
    }
    for (const int threads : {1, 2}) {
        for (const Format &format : kFormats) AddSizes({1080, format, eCKT_RGB, 1, Kind::Plain, threads});
        AddSizes({1080, kFormats[0], eCKT_RGB, 1, Kind::Smooth, threads});
        AddSizes({1080, kFormats[0], eCKT_HLS, 1, Kind::SmoothSpill, threads});
    }
}

}    // namespace
}    // namespace zck::bench

int main(int argc, char **argv) {
    zck::bench::Register();
    return zck::bench::Main(argc, argv);
}
