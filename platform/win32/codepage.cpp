#include "platform/codepage.h"

#include <limits>
#include <new>

namespace zck {
namespace {

int CountOf(size_t count) {
    if (count > static_cast<size_t>(std::numeric_limits<int>::max())) throw std::bad_alloc();
    return static_cast<int>(count);
}

}    // namespace

Text TextFromCodePage(std::string_view bytes) {
    const int size = CountOf(bytes.size());
    Text text;
    if (size == 0) return text;
    const int units = MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0);
    text.resize(static_cast<size_t>(units));
    MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, text.data(), units);
    return text;
}

std::string CodePageFromText(TextView text) {
    const int units = CountOf(text.size());
    std::string bytes;
    if (units == 0) return bytes;
    const int size = WideCharToMultiByte(CP_ACP, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    bytes.resize(static_cast<size_t>(size));
    WideCharToMultiByte(CP_ACP, 0, text.data(), units, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

}    // namespace zck
