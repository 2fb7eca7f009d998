#include "platform/settings.h"

#include <algorithm>

namespace zck {

bool SettingsKeyElements(TextView key, std::vector<Text> &elements) {
    elements.clear();
    for (size_t at = 0; at <= key.size();) {
        const size_t end = std::min(key.find(static_cast<OLECHAR>('\\'), at), key.size());
        const TextView element = key.substr(at, end - at);
        const bool climbs = element == ZCK_TEXT(".") || element == ZCK_TEXT("..");
        if (element.empty() || climbs || element.find(static_cast<OLECHAR>('/')) != TextView::npos) return false;
        if (element.find(static_cast<OLECHAR>(0)) != TextView::npos) return false;
        elements.emplace_back(element);
        at = end + 1;
    }
    return true;
}

bool SettingsAreValid(const std::vector<StoredSetting> &settings) noexcept {
    constexpr OLECHAR kZero = 0;
    return std::all_of(settings.begin(), settings.end(), [](const StoredSetting &setting) {
        return !setting.name.empty() && setting.name.find(kZero) == Text::npos && setting.value.find(kZero) == Text::npos;
    });
}

}    // namespace zck
