// The keyer's properties: what zkey props says, refuses and keeps. Where settings lie in a folder, the program is run with a
// folder of the test's own; where they lie in the registry, what is kept is tried within this process, whose registry is its
// own.
#include <gtest/gtest.h>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/plugin_door.h"
#include "hosts/zkey/properties.h"
#include "hosts/zkey/props_command.h"
#include "hosts/zkey/stored_props.h"
#include "tests/hosts/zkey/program.h"
#include "tests/support/settings_place.h"

namespace {

using namespace zkey;

bool Says(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

TEST(Props, EachHasValueKindDefaultAndMeaning) {
    const Scratch scratch;
    const Outcome all = RunProgram(scratch, "props");
    EXPECT_EQ(all.status, 0) << all.error;
    for (const ZPropertyInfo &p : kZProperties) {
        EXPECT_TRUE(Says(all.out, std::string(p.pszName) + "=")) << p.pszName;
        EXPECT_TRUE(Says(all.out, p.pszMeaning)) << p.pszName;
    }
    EXPECT_TRUE(Says(all.out, "detect.blocks=48\n")) << all.out;
    EXPECT_TRUE(Says(all.out, "1 to 16, by default 2\n")) << all.out;
    const Outcome one = RunProgram(scratch, "props DETECT.threshold=17");
    EXPECT_EQ(one.status, 0);
    EXPECT_TRUE(Says(one.out, "detect.threshold=17\n")) << one.out;
    EXPECT_FALSE(Says(one.out, "detect.blocks"));
    EXPECT_TRUE(Says(RunProgram(scratch, "props --help").out, "--forget"));
}

TEST(Props, TheTableHoldsWhatTheKeyerKeeps) {
    Keyer keyer;
    const auto kept = keyer.Props();
    EXPECT_EQ(kept.size(), 8U);
    for (const auto &[name, value] : kept) {
        const ZPropertyInfo *p = FindProperty(name);
        ASSERT_NE(p, nullptr) << name;
        EXPECT_FALSE(IsReadOnly(*p)) << name;
        EXPECT_EQ(p->pszDefault, value) << name;
        CheckProperty("", name, value);
    }
}

TEST(Props, NonsenseIsAUsageError) {
    const Scratch scratch;
    const struct {
        const char *arguments;
        const char *says;
    } cases[] = {{"nothing", "no property \"nothing\"; it has background"},
                 {"process.threads=17", "1 to 16"},
                 {"process.threads=", "1 to 16"},
                 {"detect.key_diff=much", "number"},
                 {"output.thread=2", "true or false"},
                 {"keying.borders=1,2,3,4,5", "left top right bottom"},
                 {"dll-version=2", "can only be read"},
                 {"process.threads --store", "NAME=VALUE"},
                 {"process.threads=3 --forget", "without values"},
                 {"--forget", "without values"},
                 {"--store --forget", "exclude"},
                 {"--keep", "unknown option"}};
    for (const auto &c : cases) {
        const Outcome run = RunProgram(scratch, std::string("props ") + c.arguments);
        EXPECT_EQ(run.status, kExitUsage) << c.arguments;
        EXPECT_TRUE(Says(run.error, c.says)) << c.arguments << run.error;
    }
}

TEST(Props, StoredOnesAreThereNextTimeAndCanBeForgotten) {
    const zck::test::SettingsPlace place(ZCK_TEXT("Software\\Orvane\\Quorvex\\ZChromaKey"));
    EXPECT_FALSE(StoredProperty("process.threads"));
    EXPECT_FALSE(StoreProperty("process.threads", "5"));
    EXPECT_FALSE(StoreProperty("background", "C:\\tmp\\a=b #1.png"));
    EXPECT_EQ(StoredProperty("PROCESS.threads"), "5");
    EXPECT_EQ(Keyer().Prop("process.threads"), "5");
    EXPECT_EQ(Keyer().Prop("background"), "C:\\tmp\\a=b #1.png");
    EXPECT_EQ(StoredProperty("background"), "C:\\tmp\\a=b #1.png");
    EXPECT_TRUE(StoreProperty("process.threads", "6"));
    EXPECT_EQ(Keyer().Prop("process.threads"), "6");
    EXPECT_TRUE(StoreProperty("process.threads", {}));
    EXPECT_FALSE(StoreProperty("process.threads", {}));
    EXPECT_EQ(Keyer().Prop("process.threads"), "2");
    EXPECT_EQ(StoredProperty("background"), "C:\\tmp\\a=b #1.png");
}

TEST(Props, StoredOnesInForceAreTold) {
    EXPECT_EQ(StoredInForce({{"process.threads", "2"}, {"OUTPUT.thread", "True"}}), "");
    EXPECT_EQ(StoredInForce({{"keying.borders", "100 100 100 100"}, {"process.threads", "99"}, {"other.name", "1"}}),
              "stored properties in force: keying.borders=100 100 100 100, process.threads=99 (does not suit it), other.name=1 "
              "(unknown) (zkey props NAME --forget takes them back)");
    const zck::test::SettingsPlace place(ZCK_TEXT("Software\\Orvane\\Quorvex\\ZChromaKey"));
    StoreProperty("keying.borders", "1 2 3 4");
    StoreProperty("output.thread", "false");
    EXPECT_EQ(StoredInForce(Keyer().Props()).find("stored properties in force: "), 0U);
    if (place.Folder().empty()) {
        std::printf("settings lie in the registry here: the program does not see this process's own\n");
        return;
    }
    const Scratch scratch;
    const std::string command = "key " + scratch.Write("in.raw", std::vector<uint8_t>(16 * 16 * 4, 200)) +
                                " --raw RGB32:16x16 -c green -o " + scratch.Path("out.raw");
    EXPECT_EQ(RunProgram(scratch, command).error,
              "zkey: stored properties in force: keying.borders=1 2 3 4 (zkey props NAME --forget takes them back)\n");
    EXPECT_EQ(RunProgram(scratch, command + " -q").error, "");
    EXPECT_EQ(RunProgram(scratch, command + " --prop keying.borders=0").error, "");
}

TEST(Props, LeftoverNamesCanBeForgotten) {
    const zck::test::SettingsPlace place(ZCK_TEXT("Software\\Orvane\\Quorvex\\ZChromaKey"));
    StoreProperty("old.name", "1");
    EXPECT_THROW(RunPropsCommand({"old.name"}), Failure);
    EXPECT_EQ(StoredProperty("old.name"), "1");
    EXPECT_EQ(RunPropsCommand({"Old.name", "--forget"}), kExitDone);
    EXPECT_FALSE(StoredProperty("old.name"));
    EXPECT_THROW(RunPropsCommand({"old.name", "--forget"}), Failure);
}

TEST(Props, TheFileKeepsWhatElseIsInIt) {
    const zck::test::SettingsPlace place(ZCK_TEXT("Software\\Orvane\\Quorvex\\ZChromaKey"));
    if (place.Folder().empty()) {
        std::printf("settings lie in the registry here: there is no file\n");
        return;
    }
    const Scratch scratch;
    const std::filesystem::path file = StoredPlace();
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "# mine\nprocess.threads=99\nother.name=1\nProcess.Threads=3";
    const Outcome shown = RunProgram(scratch, "props");
    EXPECT_TRUE(Says(shown.out, "stored as 3\n")) << shown.out;
    EXPECT_TRUE(Says(shown.out, "other.name=1\n    stored, but the keyer does not know it")) << shown.out;
    const Outcome stored = RunProgram(scratch, "props process.threads=4 detect.blocks=50 --store");
    EXPECT_EQ(stored.status, 0) << stored.error;
    EXPECT_TRUE(Says(stored.out, "process.threads=4 is stored in " + file.string())) << stored.out;
    std::ifstream in(file);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}),
              "# mine\nother.name=1\nprocess.threads=4\ndetect.blocks=50\n");
    EXPECT_TRUE(Says(RunProgram(scratch, "props process.threads").out, "process.threads=4\n"));
    EXPECT_TRUE(Says(RunProgram(scratch, "props process.threads --forget").out, "no longer stored"));
    EXPECT_TRUE(Says(RunProgram(scratch, "props process.threads --forget").out, "was not stored"));
    EXPECT_TRUE(Says(RunProgram(scratch, "props process.threads").out, "process.threads=2\n"));
    std::ofstream(file) << "process.threads=many\n";
    EXPECT_TRUE(Says(RunProgram(scratch, "props process.threads").out, "stored as many, which does not suit it"));
    // A file in the place of the folder.
    std::filesystem::remove_all(file.parent_path());
    std::ofstream(file.parent_path()) << "x";
    const Outcome failed = RunProgram(scratch, "props process.threads=4 --store");
    EXPECT_EQ(failed.status, kExitFailed);
    EXPECT_TRUE(Says(failed.error, "cannot write " + file.string())) << failed.error;
}

}    // namespace
