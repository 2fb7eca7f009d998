// What calls answer that give a text.
#pragma once

#include "tests/conformance/text_tools.h"

namespace conformance {

// An output that holds something, to see it cleared. The first text is not the callee's to free.
class Out {
public:
    Out() : m_before(T("before")), m_text(m_before.get()) {}
    ~Out() {
        if (m_text != m_before.get()) SysFreeString(m_text);
    }
    operator BSTR *() { return &m_text; }
    std::string Said() const { return Say(m_text); }

private:
    Bstr m_before;
    BSTR m_text;
};

inline std::string Line(HRESULT status, const std::string &text) {
    return std::to_string(static_cast<uint32_t>(status)) + " " + text;
}

// What a call answers that gives a text to `out`.
#define EXPECT_TEXT(call, status, want)  \
    EXPECT_EQ(                           \
        [&] {                            \
            Out out;                     \
            const HRESULT hr = call;     \
            return Line(hr, out.Said()); \
        }(),                             \
        Line(status, want))

}    // namespace conformance
