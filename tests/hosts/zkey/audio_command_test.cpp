// zkey audio: levels, gain and channels of WAV files, which the library reads and writes on every system.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "hosts/zkey/failure.h"
#include "tests/hosts/zkey/program.h"
#include "tests/hosts/zkey/wav_bytes.h"

namespace {

using namespace zkey;
using Samples = std::vector<int16_t>;

constexpr int kRate = 48000;

/// Stereo: a tone at half of full scale on the left, a square wave of 1000 on the right.
Samples Stereo() {
    Samples out;
    for (int i = 0; i < kRate / 10; ++i) {
        out.push_back(static_cast<int16_t>(std::lround(16384 * std::sin(i * 2 * 3.14159265358979 / 48))));
        out.push_back(static_cast<int16_t>(i % 2 == 0 ? 1000 : -1000));
    }
    return out;
}

std::string StereoFile(const Scratch &scratch, const Samples &samples = Stereo()) {
    return scratch.Write("in.wav", WavBytes(1, 2, kRate, 16, BytesOf(samples)));
}

/// The samples of a file with 16 bits.
Samples SamplesOf(const Scratch &scratch, const std::string &name) {
    const std::vector<uint8_t> bytes = scratch.Read(name);
    constexpr std::size_t kHeader = 44;
    Samples out(bytes.size() < kHeader ? 0 : (bytes.size() - kHeader) / 2);
    if (!out.empty()) std::memcpy(out.data(), bytes.data() + kHeader, out.size() * 2);
    return out;
}

TEST(AudioCommand, TellsTheLevelsOfEachChannel) {
    const Scratch scratch;
    const std::string file = StereoFile(scratch);
    const Outcome run = RunProgram(scratch, "audio " + file);
    EXPECT_EQ(run.status, 0) << run.error;
    const std::string head = file +
                             ": 2 channels, 48000 Hz, 16 bits, 4800 samples, 0.1 s\n"
                             " channel     peak dB      rms dB       vu dB  vu peak dB\n"
                             "       0       -6.02       -6.02";
    EXPECT_EQ(run.out.substr(0, head.size()), head) << run.out;
    // 20 log10(1000 / 32768), and 3 dB more for a power that counts sines.
    EXPECT_NE(run.out.find("\n       1      -30.31      -27.30"), std::string::npos) << run.out;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 4);
}

TEST(AudioCommand, SilenceIsMinusInfinity) {
    const Scratch scratch;
    const std::string file = StereoFile(scratch, Samples(960));
    const Outcome table = RunProgram(scratch, "audio " + file);
    EXPECT_NE(table.out.find("       0        -inf        -inf        -inf        -inf\n"), std::string::npos) << table.out;
    const Outcome json = RunProgram(scratch, "audio --json " + file);
    EXPECT_NE(json.out.find(R"({"channel":1,"peak":null,"rms":null,"vu":null,"vu_peak":null}]})"), std::string::npos)
        << json.out;
}

TEST(AudioCommand, TellsItAsJson) {
    const Scratch scratch;
    StereoFile(scratch);
    const Outcome run = RunProgram(scratch, "audio " + scratch.Path("in.wav") + " --json");
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out.substr(0, 10), "{\"input\":\"");
    for (const char *part : {R"(in.wav","channels":2,"rate":48000,"bits":16,"float":false,"samples":4800,"levels":[)",
                             R"({"channel":0,"peak":-6.0206,"rms":-6.0)", R"({"channel":1,"peak":-30.3090,"rms":-27.29)"}) {
        EXPECT_NE(run.out.find(part), std::string::npos) << part << "\n" << run.out;
    }
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1);
}

TEST(AudioCommand, WithoutAChangeEverySampleStays) {
    const Scratch scratch;
    const std::string file = StereoFile(scratch);
    const Outcome run = RunProgram(scratch, "audio " + file + " -o " + scratch.Path("out.wav"));
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(scratch.Read("out.wav"), scratch.Read("in.wav"));
}

TEST(AudioCommand, MapsChannels) {
    const Scratch scratch;
    const std::string command = "audio " + StereoFile(scratch) + " -o " + scratch.Path("out.wav") + " --map ";
    const Samples in = Stereo();
    ASSERT_EQ(RunProgram(scratch, command + "1,0").status, 0);
    Samples swapped = in;
    for (std::size_t i = 0; i < swapped.size(); i += 2) std::swap(swapped[i], swapped[i + 1]);
    EXPECT_EQ(SamplesOf(scratch, "out.wav"), swapped);
    // One that is not there is silent, and so is its level.
    const Outcome silent = RunProgram(scratch, command + "0,5");
    EXPECT_NE(silent.out.find("       1        -inf        -inf"), std::string::npos) << silent.out;
    Samples left = in;
    for (std::size_t i = 1; i < left.size(); i += 2) left[i] = 0;
    EXPECT_EQ(SamplesOf(scratch, "out.wav"), left);
    ASSERT_EQ(RunProgram(scratch, command + "1").status, 0);
    Samples right;
    for (std::size_t i = 1; i < in.size(); i += 2) right.push_back(in[i]);
    EXPECT_EQ(SamplesOf(scratch, "out.wav"), right);
}

TEST(AudioCommand, ChangesTheLoudness) {
    const Scratch scratch;
    const std::string command =
        "audio " + StereoFile(scratch, Samples(9600, 10000)) + " -o " + scratch.Path("out.wav") + " --gain";
    const Outcome softer = RunProgram(scratch, command + " -6.0206");
    EXPECT_EQ(softer.status, 0) << softer.error;
    EXPECT_EQ(SamplesOf(scratch, "out.wav"), Samples(9600, 5000));
    EXPECT_NE(softer.out.find("       0      -16.33"), std::string::npos) << softer.out;

    ASSERT_EQ(RunProgram(scratch, command + "=-inf:0").status, 0);
    const Samples ramp = SamplesOf(scratch, "out.wav");
    ASSERT_EQ(ramp.size(), 9600U);
    EXPECT_EQ(ramp[0], 0);
    EXPECT_NEAR(ramp[4800], 5000, 40);
    EXPECT_NEAR(ramp[9599], 10000, 40);
    EXPECT_TRUE(std::is_sorted(ramp.begin(), ramp.end()));

    ASSERT_EQ(RunProgram(scratch, command + " +20").status, 0);
    EXPECT_EQ(SamplesOf(scratch, "out.wav"), Samples(9600, 32767));
}

TEST(AudioCommand, OtherFormsOfSamples) {
    const Scratch scratch;
    scratch.Write("f.wav", WavBytes(3, 1, 8000, 32, BytesOf(std::vector<float>{0.5F, -0.25F, 0, 0.125F})));
    const Outcome real = RunProgram(scratch, "audio " + scratch.Path("f.wav"));
    EXPECT_NE(real.out.find("1 channel, 8000 Hz, 32 bits float, 4 samples, 0.0005 s\n"), std::string::npos) << real.out;
    EXPECT_NE(real.out.find("       0       -6.02"), std::string::npos) << real.out;
    scratch.Write("24.wav", WavBytes(1, 1, 8000, 24, {0, 0, 0x40, 0, 0, 0xC0}));
    const Outcome packed = RunProgram(scratch, "audio " + scratch.Path("24.wav"));
    EXPECT_NE(packed.out.find("       0       -6.02       -3.01"), std::string::npos) << packed.out;

    scratch.Write("8.wav", WavBytes(1, 1, 8000, 8, {1, 2, 3, 255}));
    const Outcome bytes = RunProgram(scratch, "audio " + scratch.Path("8.wav"));
    EXPECT_EQ(bytes.status, 0) << bytes.error;
    EXPECT_NE(bytes.out.find("\nthe library measures no samples of this width\n"), std::string::npos) << bytes.out;
    const Outcome changed = RunProgram(scratch, "audio --gain 1 " + scratch.Path("8.wav"));
    EXPECT_EQ(changed.status, kExitFailed);
    EXPECT_NE(changed.error.find("samples of 8 bits, which the library does not change"), std::string::npos) << changed.error;
}

TEST(AudioCommand, ChannelsBeyondTheMetersHaveTheirPeaks) {
    const Scratch scratch;
    Samples samples(40 * 100, 3277);
    scratch.Write("many.wav", WavBytes(1, 40, kRate, 16, BytesOf(samples)));
    const Outcome run = RunProgram(scratch, "audio " + scratch.Path("many.wav"));
    EXPECT_NE(run.out.find("\n      31      -20.00      -16.99"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\n      32      -20.00           -           -           -\n"), std::string::npos) << run.out;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 42);
}

TEST(AudioCommand, EndsWithOneLineAndAStatus) {
    const Scratch scratch;
    const std::string file = StereoFile(scratch);
    const struct {
        std::string arguments;
        int status;
        const char *says;
    } cases[] = {
        {"", kExitUsage, "no input: zkey audio INPUT"},
        {"a.wav b.wav", kExitUsage, "two inputs"},
        {file + " --gian 3", kExitUsage, "unknown option --gian"},
        {file + " --json=1", kExitUsage, "--json takes no value"},
        {file + " --gain", kExitUsage, "--gain needs a value"},
        {file + " --gain loud", kExitUsage, "\"loud\" is no gain"},
        {file + " --gain 1:", kExitUsage, "\"1:\" is no gain"},
        {file + " --gain 201", kExitUsage, "is no gain"},
        {file + " --gain nan", kExitUsage, "is no gain"},
        {file + " --gain 1:2:3", kExitUsage, "is no gain"},
        {file + " --map left", kExitUsage, "is no list of channels"},
        {file + " --map 1,", kExitUsage, "is no list of channels"},
        {file + " --map=-1", kExitUsage, "is no list of channels"},
        {file + " -o out.mp3", kExitUsage, "ends in .wav"},
        {file + " -o " + file, kExitUsage, "would overwrite the input"},
        {file + " -o " + scratch.Path("no/out.wav"), kExitFailed, "there is no folder"},
        {"-", kExitFailed, "name a file"},
        {scratch.Path("."), kExitFailed, "name a file"},
        {scratch.Path("missing.wav"), kExitFailed, "cannot open"},
        {scratch.Write("empty.wav", {}), kExitFailed, "is empty"},
        {scratch.Write("none.wav", WavBytes(1, 1, 8000, 16, {})), kExitFailed, "holds no sound"},
        {scratch.Write("text.wav", {'h', 'i'}), kExitFailed, "text.wav"},
    };
    for (const auto &c : cases) {
        const Outcome run = RunProgram(scratch, "audio " + c.arguments);
        EXPECT_EQ(run.status, c.status) << c.arguments;
        EXPECT_NE(run.error.find(c.says), std::string::npos) << c.arguments << "\n" << run.error;
        EXPECT_EQ(std::count(run.error.begin(), run.error.end(), '\n'), 1) << run.error;
        EXPECT_EQ(run.error.substr(0, 6), "zkey: ");
        EXPECT_EQ(run.out, "");
    }
    EXPECT_EQ(SamplesOf(scratch, "in.wav"), Stereo());
}

TEST(AudioCommand, HelpsOnRequest) {
    const Scratch scratch;
    const Outcome help = RunProgram(scratch, "audio --help");
    EXPECT_EQ(help.status, 0);
    for (const char *word : {"--map", "--gain", "--output", "--json", "--help"}) {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
    EXPECT_NE(RunProgram(scratch, "--help").out.find("zkey audio INPUT"), std::string::npos);
}

}    // namespace
