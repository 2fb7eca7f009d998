// A place for stored settings that no user's own settings reach.
#pragma once

#include <memory>

#include "platform/text.h"

namespace zck::test {

/// While it lives, no settings are stored but those that the process itself stores: the configuration folder is a temporary
/// one, or, where keys lie in the registry, the user's root is a key of the process's own. Places nest. Programs that the
/// process starts find the folder too, but not the key. One thread at a time.
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
    struct State;

    Text m_key;
    std::string m_folder;
    std::unique_ptr<State> m_state;
};

}    // namespace zck::test
