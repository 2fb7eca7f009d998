#include "xml/utf7.h"

namespace zck::XMLParse {
namespace {

/// 0 to 63, or -1.
int Base64Digit(char c) noexcept {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    return c == '+' ? 62 : c == '/' ? 63 : -1;
}

/// Takes a run of base 64 off the front, its "-" included.
void TakeRun(std::string_view &bytes, Text &text) {
    uint32_t bits = 0;
    int count = 0;
    while (!bytes.empty()) {
        const int digit = Base64Digit(bytes.front());
        if (digit < 0) break;
        bytes.remove_prefix(1);
        bits = (bits << 6 | static_cast<uint32_t>(digit)) & 0x3FFFFF;
        count += 6;
        if (count < 16) continue;
        count -= 16;
        text.push_back(static_cast<OLECHAR>(bits >> count & 0xFFFF));
    }
    if (!bytes.empty() && bytes.front() == '-') bytes.remove_prefix(1);
}

}    // namespace

Text TextFromUtf7(std::string_view bytes) {
    Text text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const char c = bytes.front();
        bytes.remove_prefix(1);
        if (c != '+') {
            text.push_back(static_cast<unsigned char>(c) < 128 ? static_cast<OLECHAR>(c) : OLECHAR{0xFFFD});
        } else if (!bytes.empty() && bytes.front() == '-') {
            text.push_back('+');
            bytes.remove_prefix(1);
        } else {
            TakeRun(bytes, text);
        }
    }
    return text;
}

}    // namespace zck::XMLParse
