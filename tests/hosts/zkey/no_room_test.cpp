// Devices without space, limits of the system, streams that are closed. Needs the devices and limits of a POSIX system.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>

#include "hosts/zkey/failure.h"
#include "tests/hosts/zkey/program.h"
#include "tests/hosts/zkey/wav_bytes.h"

namespace {

using namespace zkey;

/// Runs the program with the standard output going there, in a shell that is prepared first.
Outcome RunIn(const Scratch &scratch, const std::string &prepared, const std::string &arguments, const std::string &output) {
    const std::string command = prepared + std::filesystem::absolute(ZKEY_PROGRAM).string() + " " + arguments + " >" + output +
                                " 2>" + scratch.Path("stderr");
    const int raw = std::system(command.c_str());
    Outcome outcome;
    outcome.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    outcome.error = scratch.Text("stderr");
    return outcome;
}

TEST(NoRoom, TextThatCannotBeWrittenIsAFailure) {
    const Scratch scratch;
    for (const char *what : {"--help", "--version", "key --help", "props", "props --help"}) {
        const Outcome run = RunIn(scratch, "", what, "/dev/full");
        EXPECT_EQ(run.status, kExitFailed) << what;
        EXPECT_EQ(run.error, "zkey: cannot write standard output: No space left on device\n") << what;
    }
}

TEST(NoRoom, PicturesThatCannotBeWrittenAreAFailure) {
    const Scratch scratch;
    const std::string in = scratch.Write("in.raw", std::vector<uint8_t>(64 * 64 * 4, 60));
    const std::string start = "key " + in + " -q -c green --raw RGB32:64x64 ";
    for (const char *options : {"-o -", "-f raw -o /dev/full", "-f y4m --matte -o /dev/full"}) {
        const Outcome run = RunIn(scratch, "", start + options, "/dev/full");
        EXPECT_EQ(run.status, kExitFailed) << options;
        EXPECT_NE(run.error.find("No space left on device\n"), std::string::npos) << run.error;
    }
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

TEST(NoRoom, APartOfASavedKeyDoesNotStay) {
    const Scratch scratch;
    // Half a kilobyte for a file: less than the key has.
    const Outcome run = RunIn(scratch, "ulimit -f 1; ", "key -c green -c red -c blue --save-key " + scratch.Path("key.xml"),
                              scratch.Path("stdout"));
    EXPECT_EQ(run.status, kExitFailed);
    EXPECT_NE(run.error.find("could not be completed and is removed"), std::string::npos) << run.error;
    EXPECT_FALSE(std::filesystem::exists(scratch.Path("key.xml")));
}

TEST(NoRoom, APartOfASoundOrAFrameDoesNotStay) {
    const Scratch scratch;
    const std::string sound = scratch.Write("in.wav", WavBytes(1, 1, 8000, 16, std::vector<uint8_t>(8000, 1)));
    const std::string picture = scratch.Write("in.raw", std::vector<uint8_t>(64 * 64 * 4, 60));
    const struct {
        std::string arguments;
        const char *says;
    } cases[] = {{"audio " + sound, "the file would be too large"},
                 {"frame save " + picture + " -c green --raw RGB32:64x64", "File too large"}};
    for (const auto &c : cases) {
        const std::string out = scratch.Path("out.wav");
        const Outcome run = RunIn(scratch, "ulimit -f 1; ", c.arguments + " -o " + out, scratch.Path("stdout"));
        EXPECT_EQ(run.status, kExitFailed) << c.arguments;
        EXPECT_NE(run.error.find("cannot write " + out + ": "), std::string::npos) << run.error;
        EXPECT_NE(run.error.find(c.says), std::string::npos) << run.error;
        EXPECT_FALSE(std::filesystem::exists(out)) << c.arguments;
    }
}

TEST(NoRoom, AClosedInputIsNotWaitedFor) {
    const Scratch scratch;
    const Outcome run =
        RunIn(scratch, "", "key - -c green --raw RGB32:64x64 -o " + scratch.Path("out.raw") + " <&-", scratch.Path("stdout"));
    EXPECT_EQ(run.status, kExitFailed);
    EXPECT_EQ(run.error, "zkey: cannot read standard input: Bad file descriptor\n");
    EXPECT_FALSE(std::filesystem::exists(scratch.Path("out.raw")));
}

}    // namespace
