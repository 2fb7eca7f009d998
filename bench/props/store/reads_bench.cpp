// Reads of properties as a keyer makes them for each frame, in nanoseconds of processor time: `ns`.
#include "bench/measure.h"
#include "props/store/store.h"

namespace zck {
namespace {

constexpr PropName kThreads(ZCK_TEXT("process.threads"));
constexpr PropName kOutput(ZCK_TEXT("output.thread"));
constexpr PropName kBorders(ZCK_TEXT("keying.borders"));

/// The keyer's properties, and so many more in front of them.
CPropsStore &Store(int64_t more) {
    static CPropsStore stores[2];
    CPropsStore &store = stores[more > 0];
    if (store.GetInt(kThreads, 0) != 0) return store;
    bool changed = false;
    for (int64_t i = 0; i < more; ++i) store.Set(Text(ZCK_TEXT("more")).append(TextFromInt(i)), nullptr, changed);
    constexpr TextView kPairs[][2] = {
        {ZCK_TEXT("background"), ZCK_TEXT("checker")},  {ZCK_TEXT("detect.blocks"), ZCK_TEXT("48")},
        {ZCK_TEXT("detect.threshold"), ZCK_TEXT("16")}, {ZCK_TEXT("detect.key_diff"), ZCK_TEXT("1.0")},
        {ZCK_TEXT("detect.max_keys"), ZCK_TEXT("1")},   {ZCK_TEXT("output.thread"), ZCK_TEXT("true")},
        {ZCK_TEXT("process.threads"), ZCK_TEXT("2")},   {ZCK_TEXT("keying.borders"), ZCK_TEXT("16 8 16 8")},
    };
    for (const auto &pair : kPairs) store.Set(pair[0], Bstr(pair[1]).get(), changed);
    return store;
}

void IntByPropName(benchmark::State &state) {
    const CPropsStore &store = Store(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(store.GetInt(kThreads, 6));
    bench::CountNanoseconds(state);
}
BENCHMARK(IntByPropName)->Arg(0);
BENCHMARK(IntByPropName)->Arg(100)->Name("IntByPropNameAmong108");

void IntByText(benchmark::State &state) {
    const CPropsStore &store = Store(state.range(0));
    const TextView name = ZCK_TEXT("process.threads");
    for (auto _ : state) benchmark::DoNotOptimize(store.GetInt(name, 6));
    bench::CountNanoseconds(state);
}
BENCHMARK(IntByText)->Arg(0);
BENCHMARK(IntByText)->Arg(100)->Name("IntByTextAmong108");

void BoolByPropName(benchmark::State &state) {
    const CPropsStore &store = Store(0);
    for (auto _ : state) benchmark::DoNotOptimize(store.GetBool(kOutput, true));
    bench::CountNanoseconds(state);
}
BENCHMARK(BoolByPropName);

void TextByPropName(benchmark::State &state) {
    const CPropsStore &store = Store(0);
    for (auto _ : state) store.VisitText(kBorders, [](TextView text) { benchmark::DoNotOptimize(text.data()); });
    bench::CountNanoseconds(state);
}
BENCHMARK(TextByPropName);

void TextByText(benchmark::State &state) {
    const CPropsStore &store = Store(0);
    const TextView name = ZCK_TEXT("keying.borders");
    for (auto _ : state) benchmark::DoNotOptimize(store.GetText(name, TextView()).data());
    bench::CountNanoseconds(state);
}
BENCHMARK(TextByText);

/// All three reads of a frame.
void FrameReads(benchmark::State &state) {
    const CPropsStore &store = Store(0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(store.GetBool(kOutput, true));
        store.VisitText(kBorders, [](TextView text) { benchmark::DoNotOptimize(text.data()); });
        benchmark::DoNotOptimize(store.GetInt(kThreads, 6));
    }
    bench::CountNanoseconds(state);
}
BENCHMARK(FrameReads);

}    // namespace
}    // namespace zck

int main(int argc, char **argv) { return zck::bench::Main(argc, argv); }
