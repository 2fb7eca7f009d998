// The file of stored settings, and what was read of it stored and read again.
#include "platform/settings.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "fuzz/support/foreign_text.h"
#include "tests/support/settings_place.h"

namespace zck {
namespace {

using Settings = std::vector<StoredSetting>;

class Place {
public:
    Place() : m_place(ZCK_TEXT("Software\\Orvane\\Fuzz")), m_file(m_place.Folder() + "/Orvane/Fuzz.conf") {
        std::filesystem::create_directories(m_place.Folder() + "/Orvane");
    }

    TextView Key() const { return m_place.Key(); }
    void Write(std::string_view bytes) const {
        std::ofstream(m_file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

private:
    test::SettingsPlace m_place;
    std::string m_file;
};

bool Same(const Settings &a, const Settings &b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const StoredSetting &x, const StoredSetting &y) { return x.name == y.name && x.value == y.value; });
}

void Walk(std::string_view bytes) {
    static const Place s_place;
    s_place.Write(bytes);
    Settings settings;
    fuzz::Require(SettingsLoad(s_place.Key(), settings) == S_OK, "a file is read");
    size_t units = 0;
    for (const StoredSetting &setting : settings) units += setting.name.size() + setting.value.size();
    fuzz::Require(settings.size() <= kMostSettings && units <= kMostSettingsText, "settings have their bounds");
    fuzz::Require(SettingsAreValid(settings), "what is read can be stored");
    fuzz::Require(SettingsSave(s_place.Key(), settings) == S_OK, "settings are stored");
    Settings again;
    fuzz::Require(SettingsLoad(s_place.Key(), again) == S_OK && Same(again, settings), "stored settings come back");
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk({reinterpret_cast<const char *>(data), size});
    return 0;
}
