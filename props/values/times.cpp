#include "props/values/times.h"

#include <cmath>

#include "props/values/numbers.h"

namespace zck {
namespace {

constexpr bool IsTimeSpace(OLECHAR c) { return c == ' ' || c == '\r' || c == '\n' || c == '\t'; }

/// Sums up the numbers of a time, the last one first.
class BackwardTime {
public:
    void AddDigit(OLECHAR c) noexcept {
        m_number += (c - '0') * m_weight;
        m_weight *= 10;
    }

    /// `c` stands in front of the number.
    void CloseNumber(OLECHAR c) noexcept {
        if (m_unit == 0 && c == '.') {
            m_seconds += m_number / m_weight;
            m_exact = true;
        } else if (m_unit == 0) {
            m_seconds += m_number;
            m_unit = 1;
        } else if (m_unit <= 3) {
            constexpr double kUnitSeconds[] = {0, 1, 60, 3600};
            m_seconds += m_number * kUnitSeconds[m_unit];
            m_exact = m_exact || m_unit == 3;
        }
        StepUnit(c);
        m_number = 0;
        m_weight = 1;
    }

    double Seconds() const noexcept {
        const double seconds = m_exact ? m_seconds : m_seconds * 60;
        // A number of more than 300 digits.
        return std::isfinite(seconds) ? seconds : 0.0;
    }

private:
    void StepUnit(OLECHAR c) noexcept {
        const OLECHAR letter = AsciiLower(c);
        if (letter == 'h') {
            m_unit = 3;
        } else if (letter == 'm') {
            m_unit = 2;
        } else if (letter == 's') {
            m_unit = 1;
        } else if (m_unit <= 3) {
            ++m_unit;
        }
    }

    double m_number = 0;
    double m_weight = 1;
    double m_seconds = 0;
    int m_unit = 0;          ///< 0 nothing yet, 1 seconds, 2 minutes, 3 hours, 4 what is not counted
    bool m_exact = false;    ///< there were hours or a fraction
};

bool ClosesNumber(OLECHAR c) noexcept {
    const OLECHAR letter = AsciiLower(c);
    return c == ':' || c == '.' || letter == 'h' || letter == 'm' || letter == 's' || IsTimeSpace(c);
}

/// Three numbers with `separator` directly behind the first and the second; spaces and a sign may precede each.
bool ThreeNumbers(TextView text, OLECHAR separator, uint16_t *const fields[3]) noexcept {
    int32_t numbers[3] = {};
    for (int i = 0; i < 3; ++i) {
        if (i > 0) {
            if (text.empty() || text[0] != separator) return false;
            text.remove_prefix(1);
        }
        while (!text.empty() && IsNumberSpace(text[0])) text.remove_prefix(1);
        size_t used = 0;
        if (!ParseInt(text, numbers[i], &used)) return false;
        text.remove_prefix(used);
    }
    for (int i = 0; i < 3; ++i) *fields[i] = static_cast<uint16_t>(numbers[i]);
    return true;
}

void DateFromText(TextView text, TimeFields &time) noexcept {
    uint16_t *const yearFirst[3] = {&time.year, &time.month, &time.day};
    uint16_t *const dayFirst[3] = {&time.day, &time.month, &time.year};
    if (ThreeNumbers(text, '-', yearFirst) || ThreeNumbers(text, '/', dayFirst)) return;
    ThreeNumbers(text, '.', dayFirst);
}

}    // namespace

Text TimeToText(const TimeFields &time, bool timeOnly) {
    Text text;
    if (!timeOnly && time.year != 0) {
        text.append(IntToText(time.year, 4)).append(ZCK_TEXT("-"));
        text.append(IntToText(time.month, 2)).append(ZCK_TEXT("-"));
        text.append(IntToText(time.day, 2)).append(ZCK_TEXT(" "));
    }
    text.append(IntToText(time.hour, 2)).append(ZCK_TEXT(":"));
    text.append(IntToText(time.minute, 2)).append(ZCK_TEXT(":"));
    text.append(IntToText(time.second, 2));
    if (time.millisecond != 0) text.append(ZCK_TEXT(".")).append(IntToText(time.millisecond, 3));
    return text;
}

OLECHAR *TimeToText(const TimeFields &time, OLECHAR *buffer, bool timeOnly) {
    return buffer != nullptr ? CopyToBuffer(TimeToText(time, timeOnly), buffer) : nullptr;
}

TimeFields TimeFromText(TextView text, bool timeOnly) noexcept {
    BackwardTime sum;
    size_t at = text.size();
    while (at > 0) {
        const OLECHAR c = text[--at];
        if (IsDigit(c)) sum.AddDigit(c);
        if (at == 0 || ClosesNumber(c)) sum.CloseNumber(c);
        if (IsTimeSpace(c)) break;
    }
    TimeFields time;
    const double seconds = sum.Seconds();
    const double whole = std::floor(seconds);
    time.millisecond = static_cast<uint16_t>(RoundToInt((seconds - whole) * 1000));
    // The remainder is exact, a quotient of many digits would be rounded.
    const auto ofDay = static_cast<int32_t>(std::fmod(whole, 24 * 3600));
    time.hour = static_cast<uint16_t>(ofDay / 3600);
    time.minute = static_cast<uint16_t>(ofDay / 60 % 60);
    time.second = static_cast<uint16_t>(ofDay % 60);
    if (at > 0 && !timeOnly) DateFromText(text, time);
    return time;
}

}    // namespace zck
