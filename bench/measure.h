// What the benchmarks share: works that take turns, so that their ratio holds when the machine's speed drifts, medians of
// many rounds, and a table with one line per benchmark.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zck::bench {

/// Frames that come in turn, so that the next one is in no cache of a processor.
constexpr std::size_t kRing = 6;

/// Few rounds: to see that everything runs. Known after `Main` has read its arguments.
bool Quick();

/// The times that one work took, round by round.
class Samples {
public:
    template <class Work>
    void Time(Work &&work) {
        const Stamp start = Now();
        work();
        benchmark::ClobberMemory();
        Add(start, Now());
    }
    double Wall() const { return Median(m_wall); }    ///< seconds, median
    double BestWall() const;                          ///< seconds, of the fastest round
    /// Seconds of the processor, median over the rounds, of all threads together. Stands when other programs run.
    double Processor() const { return Median(m_processor); }
    double Faults() const;                      ///< minor page faults of a round, mean
    double Total() const { return m_total; }    ///< seconds of all rounds
    std::size_t Rounds() const { return m_wall.size(); }

private:
    struct Stamp {
        double wall;
        double processor;
        int64_t faults;
    };
    static Stamp Now();
    static double Median(std::vector<double> values);
    void Add(const Stamp &start, const Stamp &end);

    std::vector<double> m_wall;
    std::vector<double> m_processor;
    int64_t m_faults = 0;
    double m_total = 0;
};

/// The yardstick: a plain copy of a frame.
class CopiedFrames {
public:
    explicit CopiedFrames(std::size_t bytes);
    void Copy(std::size_t round);

private:
    std::vector<std::vector<uint8_t>> m_from;
    std::vector<std::vector<uint8_t>> m_to;
};

/// A frame of noise.
std::vector<uint8_t> Noise(std::size_t bytes);

/// A walk over a whole frame of 1920 by 1080; `round` counts up, for works that have rings of frames.
using FrameWork = std::function<void(std::size_t round)>;
constexpr int32_t kWidth = 1920;
constexpr int32_t kHeight = 1080;

/// One line with the reference, the vector version and the copy of a 32-bit frame in turns. Counters, all in processor time:
/// `ref`, `vec`, `copy` in nanoseconds a pixel, `gain` (ref over vec), `copies` (vec over copy). An empty `vec` stands for a
/// processor without vectors.
void RegisterPair(const std::string &name, FrameWork ref, FrameWork vec);

/// The counter `ns` of a benchmark whose loop does one work: nanoseconds of processor time.
void CountNanoseconds(benchmark::State &state);

/// Runs what was registered. Prints the counters as a table (0 as a dash); `--quick` and the arguments of Google Benchmark.
int Main(int argc, char **argv);

}    // namespace zck::bench
