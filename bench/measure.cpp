#include "bench/measure.h"

#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>

namespace zck::bench {
namespace {

bool g_quick = false;

double Seconds(clockid_t clock) {
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// One line per benchmark, nothing but its counters.
class Table final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &) override { return true; }

    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs) Line(run);
        std::fflush(stdout);
    }

private:
    static constexpr int kNameWidth = 34;

    void Line(const Run &run) {
        if (run.error_occurred) {
            std::printf("%-*s %s\n", kNameWidth, run.run_name.function_name.c_str(), run.error_message.c_str());
            return;
        }
        std::string head;
        for (const auto &[name, counter] : run.counters) head += Cell(name);
        if (head != m_head) std::printf("%-*s%s\n", kNameWidth, "", head.c_str());
        m_head = head;
        std::printf("%-*s", kNameWidth, run.run_name.function_name.c_str());
        for (const auto &[name, counter] : run.counters) std::printf("%s", Cell(Number(counter.value)).c_str());
        std::printf("\n");
    }

    static std::string Number(double value) {
        if (value == 0) return "-";
        char text[32];
        std::snprintf(text, sizeof(text), value < 100 ? "%.3f" : "%.0f", value);
        return text;
    }

    static std::string Cell(const std::string &text) {
        constexpr std::size_t kWide = 9;
        return text.size() < kWide ? std::string(kWide - text.size(), ' ') + text : " " + text;
    }

    std::string m_head;
};

constexpr double kPixels = double{kWidth} * kHeight;

void RunPair(benchmark::State &state, const FrameWork &ref, const FrameWork &vec) {
    static CopiedFrames frames(4 * std::size_t{kWidth} * kHeight);
    const double enough = Quick() ? 0.02 : 0.25;
    Samples copies, refs, vecs;
    for ([[maybe_unused]] auto _ : state) {
        for (std::size_t round = 0; round < 3 || copies.Total() + refs.Total() + vecs.Total() < enough; ++round) {
            copies.Time([&] { frames.Copy(round); });
            refs.Time([&] { ref(round); });
            if (vec) vecs.Time([&] { vec(round); });
        }
    }
    const double copy = copies.Processor();
    state.counters["ref"] = 1e9 * refs.Processor() / kPixels;
    state.counters["copy"] = 1e9 * copy / kPixels;
    if (!vec) return;
    state.counters["vec"] = 1e9 * vecs.Processor() / kPixels;
    state.counters["gain"] = refs.Processor() / vecs.Processor();
    state.counters["copies"] = vecs.Processor() / copy;
}

}    // namespace

bool Quick() { return g_quick; }

Samples::Stamp Samples::Now() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const double processor = Seconds(CLOCK_PROCESS_CPUTIME_ID);
    return {Seconds(CLOCK_MONOTONIC), processor, usage.ru_minflt};
}

void Samples::Add(const Stamp &start, const Stamp &end) {
    m_wall.push_back(end.wall - start.wall);
    m_processor.push_back(end.processor - start.processor);
    m_faults += end.faults - start.faults;
    m_total += m_wall.back();
}

double Samples::Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double Samples::BestWall() const { return *std::min_element(m_wall.begin(), m_wall.end()); }

double Samples::Faults() const { return static_cast<double>(m_faults) / static_cast<double>(Rounds()); }

CopiedFrames::CopiedFrames(std::size_t bytes)
    : m_from(kRing, std::vector<uint8_t>(bytes, 1)), m_to(kRing, std::vector<uint8_t>(bytes, 2)) {}

void CopiedFrames::Copy(std::size_t round) {
    std::memcpy(m_to[round % kRing].data(), m_from[round % kRing].data(), m_from[0].size());
}

std::vector<uint8_t> Noise(std::size_t bytes) {
    std::mt19937 random(7);
    std::vector<uint8_t> noise(bytes);
    for (uint8_t &b : noise) b = static_cast<uint8_t>(random() >> 8);
    return noise;
}

void RegisterPair(const std::string &name, FrameWork ref, FrameWork vec) {
    benchmark::RegisterBenchmark(name.c_str(), [ref = std::move(ref), vec = std::move(vec)](benchmark::State &state) {
        RunPair(state, ref, vec);
    })->Iterations(1);
}

void CountNanoseconds(benchmark::State &state) {
    state.counters["ns"] =
        benchmark::Counter(1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

int Main(int argc, char **argv) {
    char **const end = std::remove_if(argv + 1, argv + argc, [](const char *arg) { return std::strcmp(arg, "--quick") == 0; });
    g_quick = end != argv + argc;
    argc = static_cast<int>(end - argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return 0;
}

}    // namespace zck::bench
