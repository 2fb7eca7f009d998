// Edits of the key object, from the call to the picture that it answers with, on one thread at 1080 lines, against a plain copy
// of a 32-bit frame. Edit and copy take turns.
//
// Ten thousand edits of all kinds on a small picture tell whether memory stays flat.
//
// Counters: copy_ms and edit_ms (medians), ratio (edit over copy), cpu (the same in processor time), goal (for `ratio`), faults
// (minor page faults of an edit).
// Of edit/memory: resident_kb (when the history is full), grown_kb (from then to the last edit), goal (for grown_kb).
#include <cstdio>
#include <functional>
#include <string>

#include "bench/measure.h"
#include "frames/factory/factory.h"
#include "keying/key/key.h"
#include "keyobject/key_value.h"
#include "platform/text.h"
#include "tests/scene/scene.h"

namespace zck::bench {
namespace {

/// A key object with a scene, and a key of four colours in HLS with three rounds of smoothing.
class Editor {
public:
    explicit Editor(int32_t width = kWidth, int32_t height = kHeight) {
        SceneParams params;
        params.width = width;
        params.height = height;
        const ScenePicture picture = RenderScene(params, 0);
        ComPtr<IZFrames> factory;
        FrameFactoryCreate(IID_IZFrames, factory.PutVoid());
        Z_VID_PROPS props = {};
        props.fccType = eZFCC_ARGB32;
        props.nWidth = width;
        props.nHeight = -height;
        props.nRowBytes = 4 * width;
        ComPtr<IZFrame> frame;
        factory->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(picture.pixels.data()), frame.Put(), nullptr);
        CreateObject<CCoZKeyValue>(nullptr, IID_IZKey, m_key.PutVoid());
        m_key->KeyFrameSet(frame.get(), nullptr);
        CHROMA_KEY_RAW key = {};
        key.eType = eCKT_HLS;
        key.nKeysUsed = 4;
        for (int32_t i = 0; i < 4; ++i) {
            key.arrKeys[i].nValue = static_cast<int32_t>(0xFFA06055U + static_cast<uint32_t>(i) * 0x1000U);
            key.arrKeys[i].nDelta = 0x01602818;
        }
        m_key->KeyRawSet(&key, nullptr);
        // States to walk between.
        for (std::size_t i = 0; i < 4; ++i) Adjust(i);
    }

    bool Adjust(std::size_t round) {
        return m_key->KeyAdjustSet(eCKA_Transparent, round % 2 == 0 ? 0.1 : 0.11, m_out.Put()) >= 0;
    }
    bool Walk(std::size_t round) {
        return (round % 2 == 0 ? m_key->KeyStepBack(1, m_out.Put()) : m_key->KeyStepFwd(1, m_out.Put())) >= 0;
    }
    bool Pick(std::size_t round) {
        return m_key->KeyAddPoint(static_cast<int32_t>(8 + round % 64), 8, m_pick.get(), m_out.Put()) >= 0;
    }
    bool Detect(const std::string &options) {
        const Bstr text(TextFromUtf8(options));
        return m_key->KeyDetect(text.get(), m_out.Put()) >= 0;
    }

    bool Reset() { return m_key->KeyReset(m_out.Put()) >= 0; }
    bool Raw() {
        CHROMA_KEY_RAW key = {};
        return m_key->KeyRawGet(&key, nullptr) >= 0 && m_key->KeyRawSet(&key, nullptr) >= 0;
    }
    // Each kind in its turn; a walk goes back and forth within the history.
    bool Any(std::size_t round) {
        switch (round % 8) {
            case 0:
                return round % 64 != 0 || Detect("max_keys=4");
            case 1:
                return Raw();
            case 2:
            case 3:
                return Walk(round);
            case 4:
                return Pick(round / 8);
            case 5:
                return round % 40 != 5 || Reset();
            default:
                return Adjust(round);
        }
    }

private:
    const Bstr m_pick{TextFromUtf8("max_keys=4 type=HLS")};
    ComPtr<IZKey> m_key;
    ComPtr<IUnknown> m_out;
};

using EditWork = std::function<bool(Editor &, std::size_t round)>;

void Measure(benchmark::State &state, const EditWork &work, double goal) {
    Editor editor;
    CopiedFrames frames(std::size_t{4} * kWidth * kHeight);
    for (std::size_t i = 0; i < kRing; ++i) {
        if (!work(editor, i)) state.SkipWithError("the key object refused the edit");
    }
    Samples copies, edits;
    for ([[maybe_unused]] auto _ : state) {
        for (std::size_t round = 0; round < (Quick() ? 10U : 60U); ++round) {
            copies.Time([&] { frames.Copy(round); });
            edits.Time([&] { work(editor, round); });
        }
    }
    state.counters["copy_ms"] = 1e3 * copies.Wall();
    state.counters["edit_ms"] = 1e3 * edits.Wall();
    state.counters["ratio"] = edits.Wall() / copies.Wall();
    state.counters["cpu"] = edits.Processor() / copies.Processor();
    state.counters["goal"] = goal;
    state.counters["faults"] = edits.Faults();
}

/// Kilobytes of this process in memory, 0 where the system does not tell them in a file.
double ResidentKb() {
    std::FILE *file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr) return 0;
    long long all = 0;
    long long resident = 0;
    const bool read = std::fscanf(file, "%lld %lld", &all, &resident) == 2;
    std::fclose(file);
    return read ? static_cast<double>(resident) * 4 : 0;
}

void MeasureMemory(benchmark::State &state) {
    constexpr std::size_t kEdits = 10000;
    // The history is full, and what is made once has been made.
    constexpr std::size_t kSettled = 2000;
    Editor editor(320, 180);
    double settled = 0;
    for ([[maybe_unused]] auto _ : state) {
        for (std::size_t round = 0; round < kEdits; ++round) {
            if (round == kSettled) settled = ResidentKb();
            if (!editor.Any(round)) state.SkipWithError("the key object refused the edit");
        }
    }
    state.counters["resident_kb"] = settled;
    state.counters["grown_kb"] = ResidentKb() - settled;
    state.counters["goal"] = 256;
}

void Add(const char *name, double goal, const EditWork &work) {
    benchmark::RegisterBenchmark(name, [work, goal](benchmark::State &state) { Measure(state, work, goal); })->Iterations(1);
}

void Register() {
    Add("edit/adjust", 12, [](Editor &e, std::size_t round) { return e.Adjust(round); });
    Add("edit/back", 12, [](Editor &e, std::size_t round) { return e.Walk(round); });
    Add("edit/pick", 14, [](Editor &e, std::size_t round) { return e.Pick(round); });
    for (const char *type : {"HLS", "RGB", "YUV"}) {
        const std::string options = std::string("key_diff=0 max_keys=16 type=") + type;
        Add(("edit/detect/blocks/" + std::string(type)).c_str(), 25,
            [options](Editor &e, std::size_t) { return e.Detect(options); });
        Add(("edit/detect/preview/" + std::string(type)).c_str(), 25,
            [options](Editor &e, std::size_t) { return e.Detect(options + " show_blocks=false"); });
    }
    benchmark::RegisterBenchmark("edit/memory", MeasureMemory)->Iterations(1);
}

}    // namespace
}    // namespace zck::bench

int main(int argc, char **argv) {
    zck::bench::Register();
    return zck::bench::Main(argc, argv);
}
