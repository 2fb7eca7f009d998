#include "tests/support/settings_place.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace zck::test {

struct SettingsPlace::State {
    std::optional<std::string> before;
};

SettingsPlace::SettingsPlace(TextView key) : m_key(key), m_state(std::make_unique<State>()) {
    std::string folder = (std::filesystem::temp_directory_path() / "zck_settings_XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_folder = folder;
    if (const char *before = std::getenv("XDG_CONFIG_HOME")) m_state->before = before;
    setenv("XDG_CONFIG_HOME", m_folder.c_str(), 1);
}

SettingsPlace::~SettingsPlace() {
    if (m_state->before) {
        setenv("XDG_CONFIG_HOME", m_state->before->c_str(), 1);
    } else {
        unsetenv("XDG_CONFIG_HOME");
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

}    // namespace zck::test
