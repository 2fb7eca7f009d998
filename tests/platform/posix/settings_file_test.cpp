#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/settings.h"
#include "platform/status.h"
#include "tests/support/settings_place.h"

namespace zck {
namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

class SettingsFileTest : public testing::Test {
protected:
    fs::path File() const { return fs::path(m_place.Folder()) / "Orvane" / "Test.conf"; }

    void Write(std::string_view bytes) const {
        fs::create_directories(File().parent_path());
        std::ofstream(File(), std::ios::binary) << bytes;
    }

    std::string Loaded() const {
        std::vector<StoredSetting> settings;
        EXPECT_EQ(SettingsLoad(m_place.Key(), settings), S_OK);
        std::string lines;
        for (const StoredSetting &s : settings) lines += "[" + Utf8FromText(s.name) + "|" + Utf8FromText(s.value) + "]";
        return lines;
    }

    test::SettingsPlace m_place{ZCK_TEXT("Software\\Orvane\\Test")};
};

TEST_F(SettingsFileTest, LiesInTheConfigurationFolder) {
    ASSERT_EQ(SettingsSave(m_place.Key(), {{Text(ZCK_TEXT("a")), Text(ZCK_TEXT("1"))}}), S_OK);
    struct stat facts = {};
    ASSERT_EQ(stat(File().c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0600U);
    EXPECT_EQ(std::distance(fs::directory_iterator(File().parent_path()), fs::directory_iterator()), 1);
}

TEST_F(SettingsFileTest, HomeFolderServesWithoutAnAbsoluteConfigurationFolder) {
    const std::string home = m_place.Folder();
    const char *before = getenv("HOME");
    const std::string kept = before != nullptr ? before : "";
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_EQ(SettingsSave(m_place.Key(), {{Text(ZCK_TEXT("a")), Text(ZCK_TEXT("1"))}}), S_OK);
    EXPECT_TRUE(fs::exists(fs::path(home) / ".config/Orvane/Test.conf"));
    unsetenv("HOME");
    std::vector<StoredSetting> settings;
    EXPECT_EQ(SettingsLoad(m_place.Key(), settings), S_FALSE);
    EXPECT_EQ(SettingsSave(m_place.Key(), settings), kErrorFileNotFound);
    setenv("HOME", kept.c_str(), 1);
}

TEST_F(SettingsFileTest, CommentsAndDosLineEndsAreFine) {
    Write("# settings\r\n\r\nprocess.threads=4\r\n \r\nbackground=Navy");
    EXPECT_EQ(Loaded(), "[process.threads|4][background|Navy]");
}

TEST_F(SettingsFileTest, SkipsLinesThatAreNotWellFormed) {
    Write("no sign\n=1\nbad\\escape\\x=1\nend=1\\\n\xFF=1\nz=\xC0\x80\nnul=\0x\ngood=a=b\n"sv);
    EXPECT_EQ(Loaded(), "[good|a=b]");
}

TEST_F(SettingsFileTest, RefusesWhatIsNoReasonableFile) {
    std::vector<StoredSetting> settings;
    Write(std::string(4 * kMostSettingsText + 1, '#'));
    EXPECT_EQ(SettingsLoad(m_place.Key(), settings), StatusOf(0x800700DF));
    fs::remove(File());
    fs::create_directory(File());
    EXPECT_EQ(SettingsLoad(m_place.Key(), settings), kErrorAccessDenied);
    fs::remove(File());
    ASSERT_EQ(mkfifo(File().c_str(), 0600), 0);
    EXPECT_EQ(SettingsLoad(m_place.Key(), settings), kErrorAccessDenied);
}

TEST_F(SettingsFileTest, FailedSaveLeavesNothingBehind) {
    fs::create_directories(File() / "taken");
    EXPECT_LT(SettingsSave(m_place.Key(), {}), 0);
    EXPECT_EQ(std::distance(fs::directory_iterator(File().parent_path()), fs::directory_iterator()), 1);
}

TEST_F(SettingsFileTest, AReaderSeesOldOrNewNeverAPart) {
    const auto filled = [](OLECHAR c) {
        std::vector<StoredSetting> settings;
        for (int i = 0; i < 100; ++i) settings.push_back({TextFromInt(i), Text(500, c)});
        return settings;
    };
    ASSERT_EQ(SettingsSave(m_place.Key(), filled('a')), S_OK);
    std::jthread writer([&](const std::stop_token &stop) {
        for (int i = 0; !stop.stop_requested(); ++i) SettingsSave(m_place.Key(), filled(i % 2 == 0 ? 'b' : 'a'));
    });
    for (int i = 0; i < 50; ++i) {
        std::vector<StoredSetting> settings;
        ASSERT_EQ(SettingsLoad(m_place.Key(), settings), S_OK);
        ASSERT_EQ(settings.size(), 100U);
        for (const StoredSetting &s : settings) ASSERT_EQ(s.value, settings[0].value);
    }
}

}    // namespace
}    // namespace zck
