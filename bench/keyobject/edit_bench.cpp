// Edits of the key object, from the call to the picture that it answers with, on one thread at 1080 lines, against a plain copy
// of a 32-bit frame. Edit and copy take turns.
//
// Counters: copy_ms and edit_ms (medians), ratio (edit over copy), cpu (the same in processor time), goal (for `ratio`), faults
// (minor page faults of an edit).
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
    Editor() {
        SceneParams params;
        params.width = kWidth;
        params.height = kHeight;
        const ScenePicture picture = RenderScene(params, 0);
        ComPtr<IZFrames> factory;
        FrameFactoryCreate(IID_IZFrames, factory.PutVoid());
        Z_VID_PROPS props = {};
        props.fccType = eZFCC_ARGB32;
        props.nWidth = kWidth;
        props.nHeight = -kHeight;
        props.nRowBytes = 4 * kWidth;
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
}

}    // namespace
}    // namespace zck::bench

int main(int argc, char **argv) {
    zck::bench::Register();
    return zck::bench::Main(argc, argv);
}
