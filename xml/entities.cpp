#include "xml/entities.h"

#include <algorithm>

#include "props/values/numbers.h"

namespace zck::XMLParse {
namespace {

struct Entity {
    OLECHAR first;         ///< behind the "&"
    OLECHAR second;        ///< 0: not looked at
    bool secondLowByte;    ///< only the low byte of the second is compared
    uint8_t length;        ///< of the whole name, "&" and ";" included
    OLECHAR meaning;
};

constexpr OLECHAR kNoBreak = ' ';

/// In the order of trying.
constexpr Entity kEntities[] = {
    {'l', 0, false, 4, '<'},           // &lt;
    {'g', 0, false, 4, '>'},           // &gt;
    {'a', 'm', true, 5, '&'},          // &amp;
    {'a', 'p', false, 6, '\''},        // &apos;
    {'n', 'b', false, 6, kNoBreak},    // &nbsp;
    {'c', 'o', false, 6, 0x00A9},      // &copy;
    {'r', 'e', true, 5, 0x00AE},       // &reg;
    {'q', 'u', false, 6, '"'},         // &quot;
};

bool Matches(const Entity &entity, TextView text) noexcept {
    if (text.size() < 2 || text[1] != entity.first) return false;
    if (entity.second == 0) return true;
    if (text.size() < 3) return false;
    return (entity.secondLowByte ? text[2] & 0xFF : text[2]) == entity.second;
}

/// "&#65;" and "&#x41;" at the start of the text: how many characters it takes, 0 when no digit stands there.
size_t NumberEntity(TextView text, uint32_t &number) noexcept {
    constexpr uint64_t kMost = 0xFFFFFFFF;
    if (text.size() < 3 || text[1] != '#') return 0;
    size_t used = 2;
    uint64_t value = 0;
    if (text[2] == 'x') {
        for (used = 3; used < text.size() && HexDigit(text[used]) >= 0; ++used) {
            value = std::min(kMost, value * 16 + static_cast<uint64_t>(HexDigit(text[used])));
        }
        if (used == 3) return 0;
    } else {
        if (!IsDigit(text[2])) return 0;
        const AutoNumber parsed = AutoNumberFromText(text.substr(2));
        value = std::min(kMost, parsed.magnitude);
        used += parsed.used;
    }
    number = static_cast<uint32_t>(value);
    // And the character behind, which should be the ";".
    return std::min(used + 1, text.size());
}

class Decoder {
public:
    explicit Decoder(TextView text) noexcept : m_rest(text) {}

    Text Decode(bool keepBlank) {
        m_out.reserve(m_rest.size());
        while (!m_rest.empty()) {
            const OLECHAR c = m_rest.front();
            if (c == '&') {
                TakeEntity();
            } else {
                m_out.push_back(c == '\r' || c == '\n' || c == '\t' ? OLECHAR{' '} : c);
                m_rest.remove_prefix(1);
            }
        }
        if (!keepBlank && !m_kept && m_out.find_first_not_of(OLECHAR{' '}) == Text::npos) m_out.clear();
        return std::move(m_out);
    }

private:
    void Skip(size_t count) noexcept { m_rest.remove_prefix(std::min(count, m_rest.size())); }

    void TakeEntity() {
        for (const Entity &entity : kEntities) {
            if (!Matches(entity, m_rest)) continue;
            m_out.push_back(entity.meaning);
            m_kept = m_kept || entity.meaning == kNoBreak;
            Skip(entity.length);
            return;
        }
        uint32_t number = 0;
        const size_t used = NumberEntity(m_rest, number);
        if ((number & 0xFFFF) != 0) m_out.push_back(static_cast<OLECHAR>(number & 0xFFFF));
        Skip(used != 0 ? used : 2);
    }

    TextView m_rest;
    Text m_out;
    bool m_kept = false;
};

}    // namespace

Text DecodeText(TextView text, bool keepBlank) { return Decoder(text).Decode(keepBlank); }

}    // namespace zck::XMLParse
