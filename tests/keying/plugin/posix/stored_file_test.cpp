// Files of stored properties that nobody would write.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "platform/settings.h"
#include "tests/keying/plugin/keyer_test.h"
#include "tests/support/settings_place.h"

namespace zck {
namespace {

namespace fs = std::filesystem;

class StoredFile : public KeyerTest {
protected:
    void SetUp() override {
        fs::create_directories(File().parent_path());
        KeyerTest::SetUp();
    }
    fs::path File() const { return fs::path(m_place.Folder()) / "Orvane" / "Quorvex" / "ZChromaKey.conf"; }
    void Write(const std::string &bytes) const { std::ofstream(File(), std::ios::binary | std::ios::trunc) << bytes; }

    /// The tree of a plug-in that is made now.
    std::string TreeNow() {
        Create();
        return Get("");
    }

    test::SettingsPlace m_place{ZCK_TEXT("Software\\Orvane\\Quorvex\\ZChromaKey")};
};

TEST_F(StoredFile, IsFoundWhereItIsSaid) {
    Write("detect.blocks=64\n");
    Create();
    EXPECT_EQ(Get("detect.blocks"), "64");
}

TEST_F(StoredFile, WhatCannotBeReadLeavesTheDefaults) {
    const std::string defaults = Get("");
    ASSERT_NE(defaults.find("detect.blocks"), std::string::npos) << defaults;
    fs::create_directory(File());
    EXPECT_EQ(TreeNow(), defaults) << "a folder";
    fs::remove(File());
    fs::create_symlink(File(), File());
    EXPECT_EQ(TreeNow(), defaults) << "a link to itself";
    fs::remove(File());
    ASSERT_EQ(mkfifo(File().c_str(), 0600), 0);
    EXPECT_EQ(TreeNow(), defaults) << "a pipe that nobody writes to";
    fs::remove(File());
    Write("detect.blocks=64\n" + std::string(4 * kMostSettingsText, '#'));
    EXPECT_EQ(TreeNow(), defaults) << "a file that is too long";
    fs::resize_file(File(), uintmax_t{1} << 40);
    EXPECT_EQ(TreeNow(), defaults) << "a file of a terabyte";
    fs::remove_all(File().parent_path());
    std::ofstream(File().parent_path()) << "detect.blocks=64\n";
    EXPECT_EQ(TreeNow(), defaults) << "a file in the folder's place";
}

TEST_F(StoredFile, WithoutPermissionTheDefaultsStay) {
    const std::string defaults = Get("");
    Write("detect.blocks=64\n");
    // The way to the file is open, so that its own mode decides.
    for (fs::path folder = File().parent_path(); folder != fs::temp_directory_path(); folder = folder.parent_path())
        fs::permissions(folder, fs::perms(0755));
    // The superuser may read every file, so this one steps down where the system lets it.
    const uid_t user = geteuid();
    for (const auto mode : {fs::perms(0444), fs::perms::none}) {
        fs::permissions(File(), mode);
        const bool may = user == 0 && seteuid(65534) != 0;
        const std::string tree = TreeNow();
        ASSERT_EQ(seteuid(user), 0);
        EXPECT_EQ(tree == defaults, mode == fs::perms::none && !may) << tree;
    }
}

TEST_F(StoredFile, RubbishIsSurvived) {
    std::minstd_rand noise(7);
    for (int round = 0; round < 20; ++round) {
        std::string bytes(20000, '\0');
        for (char &byte : bytes) byte = static_cast<char>(noise() >> 8);
        Write(bytes);
        Create();
        // Its lines are not UTF-8 or have no name, but for a chance hit that no default name is among.
        EXPECT_EQ(Get("background"), "checker");
        EXPECT_EQ(Get("process.threads"), "2");
        EXPECT_EQ(Get("keying.borders"), "");
    }
    Write("ELF\x7f=\xFF\nprocess.threads\nprocess.threads \x80=1\n=process.threads\nprocess.threads=\\z\n");
    Create();
    EXPECT_EQ(Get("process.threads"), "2");
}

TEST_F(StoredFile, AsMuchAsIsReadMakesAPlugin) {
    std::string bytes;
    for (size_t i = 0; i < kMostSettings + 5; ++i) bytes += "n" + std::to_string(i) + "::m=" + std::to_string(i) + "\n";
    Write(bytes);
    Create();
    EXPECT_EQ(Get("n4095::m"), "4095");
    EXPECT_EQ(Get("n4096::m"), "status 1");
    EXPECT_EQ(Get("background"), "checker");
    std::string deep;
    while (deep.size() < kMostSettingsText - 10) deep += "a::";
    Write(deep + "b=1\nbackground=Navy\n");
    Create();
    EXPECT_EQ(Get("background"), "checker") << "what comes after the bound of the text is not read";
}

}    // namespace
}    // namespace zck
