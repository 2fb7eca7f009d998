#include "tests/support/settings_place.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace zck::test {

SettingsPlace::SettingsPlace(TextView key) : m_key(key) {
    std::string folder = (std::filesystem::temp_directory_path() / "zck_settings_XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_folder = folder;
    const char *before = std::getenv("XDG_CONFIG_HOME");
    m_before = before != nullptr ? before : "";
    setenv("XDG_CONFIG_HOME", m_folder.c_str(), 1);
}

SettingsPlace::~SettingsPlace() {
    if (m_before.empty()) {
        unsetenv("XDG_CONFIG_HOME");
    } else {
        setenv("XDG_CONFIG_HOME", m_before.c_str(), 1);
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

}    // namespace zck::test
