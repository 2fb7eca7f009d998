// A place for stored settings that no user's own settings reach.
#pragma once

#include "platform/text.h"

namespace zck::test {

/// While it lives, keys start empty: the configuration folder is a temporary one, or, where keys lie in the registry,
/// this key's values are put aside. One at a time in a process.
class SettingsPlace {
public:
    explicit SettingsPlace(TextView key);
    ~SettingsPlace();
    SettingsPlace(const SettingsPlace &) = delete;
    SettingsPlace &operator=(const SettingsPlace &) = delete;

    TextView Key() const { return m_key; }
    /// The temporary configuration folder; empty where there is none.
    const std::string &Folder() const { return m_folder; }

private:
    Text m_key;
    Text m_aside;
    std::string m_folder;
    std::string m_before;
};

}    // namespace zck::test
