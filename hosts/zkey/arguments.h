// The walk through a command line of options, and of words that are none.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/zkey/failure.h"

namespace zkey {

class ArgumentWalk {
public:
    explicit ArgumentWalk(const std::vector<std::string> &arguments) : m_arguments(arguments) {}

    /// The next argument, with what stands behind its "=" if it is an option. False at the end.
    bool Next() {
        if (m_at == m_arguments.size()) return false;
        m_word = m_arguments[m_at++];
        m_value.reset();
        const std::size_t equals = m_word.find('=');
        if (m_word.starts_with("--") && equals != std::string::npos) {
            m_value = m_word.substr(equals + 1);
            m_word.resize(equals);
        }
        return true;
    }

    const std::string &Word() const { return m_word; }
    bool IsOption() const { return m_word.size() > 1 && m_word[0] == '-'; }
    /// The value of the present option.
    std::string Value() {
        if (m_value) return *m_value;
        if (m_at == m_arguments.size()) FailUsage(m_word + " needs a value");
        return m_arguments[m_at++];
    }
    /// For an option without a value.
    void NoValue() const {
        if (m_value) FailUsage(m_word + " takes no value");
    }
    std::vector<std::string> Rest() const {
        return {m_arguments.begin() + static_cast<std::ptrdiff_t>(m_at), m_arguments.end()};
    }

private:
    const std::vector<std::string> &m_arguments;
    std::size_t m_at = 0;
    std::string m_word;
    std::optional<std::string> m_value;
};

}    // namespace zkey
