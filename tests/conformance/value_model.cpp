#include "tests/conformance/value_model.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

namespace conformance {
namespace {

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
int Digit(char c) {
    const size_t at = std::string("0123456789abcdef").find(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    return c == 0 || at == std::string::npos ? 99 : static_cast<int>(at);
}
char At(const std::string &s, size_t i) { return i < s.size() ? s[i] : '\0'; }

std::string Lower(std::string s) {
    for (char &c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

template <class... Args>
std::string Print(const char *format, Args... args) {
    char line[600];
    std::snprintf(line, sizeof line, format, args...);
    return line;
}

struct Named {
    const char *name;
    uint32_t bgr;
};
// In the order of values; the last ones are only read, "OV" and "OVL" only written.
const Named kWritten[] = {{"Black", 0x000000},  {"Maroon", 0x000080}, {"Red", 0x0000FF},    {"OrangeRed", 0x0045FF},
                          {"Green", 0x008000},  {"Olive", 0x008080},  {"Orange", 0x00A5FF}, {"Lime", 0x00FF00},
                          {"Yellow", 0x00FFFF}, {"Brown", 0x13458B},  {"Navy", 0x800000},   {"Purple", 0x800080},
                          {"Teal", 0x808000},   {"Grey", 0x808080},   {"Pink", 0x8080FF},   {"OV", 0x8A5406},
                          {"OVL", 0xB29000},    {"Silver", 0xC0C0C0}, {"Blue", 0xFF0000},   {"Magenta", 0xFF00FF},
                          {"Aqua", 0xFFFF00},   {"White", 0xFFFFFF}};
const Named kRead[] = {{"cyan", 0xFFFF00},         {"orvane", 0x8A5406}, {"ov", 0x8A5406},
                       {"orvane-light", 0xB29000}, {"ovl", 0xB29000},    {"ovlight", 0xB29000}};

uint32_t SwapEnds(uint32_t v) { return (v & 0xFF00FF00) | ((v & 0xFF) << 16) | ((v >> 16) & 0xFF); }

}    // namespace

ModelNumber NumberInBase(const std::string &s, int base) {
    ModelNumber n;
    size_t i = 0;
    while (IsBlank(At(s, i))) ++i;
    if (At(s, i) == '-' || At(s, i) == '+') n.negative = s[i++] == '-';
    if (base == 0) {
        base = 10;
        if (At(s, i) == '0') {
            base = 8;
            if ((At(s, i + 1) == 'x' || At(s, i + 1) == 'X')) {
                if (Digit(At(s, i + 2)) > 15) return n.used = i + 1, n;
                base = 16;
                i += 2;
            }
        }
    }
    const size_t first = i;
    for (; Digit(At(s, i)) < base; ++i) {
        const uint64_t digit = static_cast<uint64_t>(Digit(s[i])), b = static_cast<uint64_t>(base);
        if (n.tooLarge || n.magnitude > (UINT64_MAX - digit) / b) {
            n.tooLarge = true;
            n.magnitude = UINT64_MAX;
        } else {
            n.magnitude = n.magnitude * b + digit;
        }
    }
    n.used = i == first ? 0 : i;
    return n;
}

int32_t ModelInt(const std::string &s) {
    const ModelNumber n = NumberInBase(s, 10);
    if (n.negative) return n.magnitude > 0x80000000U ? INT32_MIN : static_cast<int32_t>(-static_cast<int64_t>(n.magnitude));
    return n.magnitude > 0x7FFFFFFFU ? INT32_MAX : static_cast<int32_t>(n.magnitude);
}

uint32_t ModelHex32(const std::string &s) {
    const ModelNumber n = NumberInBase(s, 0);
    if (n.magnitude > UINT32_MAX) return UINT32_MAX;
    const auto v = static_cast<uint32_t>(n.magnitude);
    return n.negative ? 0U - v : v;
}

uint64_t ModelHex64(const std::string &s) {
    const ModelNumber n = NumberInBase(s, 0);
    return n.tooLarge ? UINT64_MAX : n.negative ? 0U - n.magnitude : n.magnitude;
}

int64_t ModelInt64(const std::string &s) {
    const ModelNumber n = NumberInBase(s, 0);
    if (n.negative) return n.magnitude >= uint64_t{1} << 63 ? INT64_MIN : -static_cast<int64_t>(n.magnitude);
    return n.magnitude >= uint64_t{1} << 63 ? INT64_MAX : static_cast<int64_t>(n.magnitude);
}

bool ModelBool(const std::string &s) {
    const std::string low = Lower(s);
    for (const char *word : {"0", "false"})
        if (low == word) return false;
    for (const char *word : {"1", "true", "yes", "only", "on", "y"})
        if (low == word) return true;
    const ModelNumber n = NumberInBase(s, 0);
    return !n.negative && n.magnitude > 0;
}

double ModelReal(const std::string &s, size_t &used) {
    size_t i = 0;
    while (IsBlank(At(s, i))) ++i;
    const size_t start = i;
    if (At(s, i) == '-' || At(s, i) == '+') ++i;
    size_t digits = 0;
    for (; IsDigit(At(s, i)); ++i) ++digits;
    if (At(s, i) == '.')
        for (++i; IsDigit(At(s, i)); ++i) ++digits;
    if (digits == 0) return used = 0, 0.0;
    if (Lower({At(s, i)}) == "e") {
        size_t e = i + 1;
        if (At(s, e) == '-' || At(s, e) == '+') ++e;
        if (IsDigit(At(s, e))) {
            while (IsDigit(At(s, e))) ++e;
            i = e;
        }
    }
    used = i;
    return std::strtod(s.substr(start, i - start).c_str(), nullptr);
}

double ModelFloat(const std::string &s) {
    size_t used = 0;
    const double v = ModelReal(s, used);
    return used != 0 && At(s, used) == '%' ? v / 100 : v;
}

std::string ModelFloatText(double value, int precision) {
    std::string s = precision < 0 ? Print("%f", value) : Print("%.*f", precision, value);
    if (s.size() <= 3 || (precision >= 0 && precision <= 2) || s.find('.') == std::string::npos) return s;
    while (s.size() > 2 && s.back() == '0' && s[s.size() - 2] != '.') s.pop_back();
    return s;
}

std::string ModelColorText(uint32_t color) {
    const uint32_t c = color & 0xFFFFFF, a = color >> 24;
    std::string name;
    for (const Named &n : kWritten)
        if (n.bgr == c) name = n.name;
    if (name.empty()) name = Print("#%06X", static_cast<unsigned>(SwapEnds(c)));
    return a == 255 ? name : name + Print("(%d)", static_cast<int>(a));
}

uint32_t ModelColor(const std::string &s, uint32_t fallback) {
    std::string copy = s.substr(0, 63);
    const size_t foreign = copy.find_first_of("~!@#$%^&*-+=|\\/.,;`");
    if (foreign != std::string::npos) copy.resize(foreign);
    uint32_t alpha = 255;
    const size_t bracket = copy.find('(');
    const bool told = bracket != std::string::npos;
    if (told) {
        double v = ModelFloat(copy.substr(bracket + 1));
        if (v < 1.0) v *= 255.0;
        v = std::round(v);
        alpha = v < 0 ? 0 : v > 255 ? 255 : static_cast<uint32_t>(v);
        copy.resize(bracket);
    }
    const std::string low = Lower(copy);
    if (low == "default" || (told && copy.empty())) return told ? (fallback & 0xFFFFFF) | alpha << 24 : fallback;
    if (low == "transparent") return 0;
    for (const Named &n : kWritten)
        if (low == Lower(n.name)) return n.bgr | alpha << 24;
    for (const Named &n : kRead)
        if (low == n.name) return n.bgr | alpha << 24;
    const auto upperHex = [&](size_t i) { return IsDigit(At(copy, i)) || (At(copy, i) >= 'A' && At(copy, i) <= 'F'); };
    if (upperHex(0) && upperHex(1)) copy = "0x" + copy;
    const ModelNumber n = NumberInBase(copy.substr(0, 13), 0);
    if (n.used == 0) return fallback;
    uint32_t v = n.magnitude > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(n.magnitude);
    if (n.used < 6) v = (v & 15) * 17 | ((v >> 4) & 15) * 17 << 8 | ((v >> 8) & 15) * 17 << 16;
    v = SwapEnds(v);
    return n.used < 9 ? (v & 0xFFFFFF) | alpha << 24 : v;
}

std::array<uint8_t, 16> ModelIdentifier(const std::string &s) {
    static const size_t kPlace[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    std::vector<int> pairs;
    for (size_t i = 0; i < s.size(); ++i) {
        if (Digit(s[i]) > 15 || Digit(At(s, i + 1)) > 15) continue;
        pairs.push_back(Digit(s[i]) * 16 + Digit(s[i + 1]));
        ++i;
    }
    std::array<uint8_t, 16> id = {};
    if (pairs.size() == 16)
        for (size_t i = 0; i < 16; ++i) id[kPlace[i]] = static_cast<uint8_t>(pairs[i]);
    return id;
}

ModelTime ModelTimeOf(const std::string &s, bool timeOnly) {
    double n = 0, w = 1, t = 0;
    int u = 0;
    bool exact = false, early = false;
    for (size_t i = s.size(); i-- > 0;) {
        const char c = s[i];
        if (IsDigit(c)) {
            n += (c - '0') * w;
            w *= 10;
        }
        if (i != 0 && std::string(":.HhMmSs \r\n\t").find(c) == std::string::npos) continue;
        if (u == 0 && c == '.') {
            t += n / w;
            exact = true;
        } else if (u == 0) {
            t += n;
            u = 1;
        } else if (u == 1) {
            t += n;
        } else if (u == 2) {
            t += n * 60;
        } else if (u == 3) {
            t += n * 3600;
            exact = true;
        }
        u = c == 'H' || c == 'h' ? 3 : c == 'M' || c == 'm' ? 2 : c == 'S' || c == 's' ? 1 : u + 1;
        n = 0;
        w = 1;
        if (c == ' ' || c == '\r' || c == '\n' || c == '\t') {
            early = i != 0;
            break;
        }
    }
    if (!exact) t *= 60;
    ModelTime r;
    const auto seconds = static_cast<int64_t>(t);
    r.f[7] = static_cast<int>(std::round((t - static_cast<double>(seconds)) * 1000));
    r.f[4] = static_cast<int>(seconds / 3600 % 24);
    r.f[5] = static_cast<int>(seconds / 60 % 60);
    r.f[6] = static_cast<int>(seconds % 60);
    if (!early || timeOnly) return r;
    int a = 0, b = 0, c = 0;
    if (std::sscanf(s.c_str(), "%d-%d-%d", &a, &b, &c) == 3) {
        r.f[0] = a, r.f[1] = b, r.f[3] = c;
    } else if (std::sscanf(s.c_str(), "%d/%d/%d", &a, &b, &c) == 3 || std::sscanf(s.c_str(), "%d.%d.%d", &a, &b, &c) == 3) {
        r.f[0] = c, r.f[1] = b, r.f[3] = a;
    }
    for (int &field : r.f) field &= 0xFFFF;
    return r;
}

std::string ModelTimeText(const ModelTime &time, bool timeOnly) {
    const int *f = time.f;
    std::string s;
    if (!timeOnly && f[0] != 0) s = Print("%04d-%02d-%02d ", f[0], f[1], f[3]);
    s += Print("%02d:%02d:%02d", f[4], f[5], f[6]);
    return f[7] != 0 ? s + Print(".%03d", f[7]) : s;
}

}    // namespace conformance
