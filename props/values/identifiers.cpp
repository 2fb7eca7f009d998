#include "props/values/identifiers.h"

#include <cstring>

#include "props/values/numbers.h"

namespace zck {

Text IdentifierToText(const GUID &id) {
    Text text(1, static_cast<OLECHAR>('{'));
    text.append(HexToText(id.Data1, 8)).append(ZCK_TEXT("-"));
    text.append(HexToText(id.Data2, 4)).append(ZCK_TEXT("-"));
    text.append(HexToText(id.Data3, 4)).append(ZCK_TEXT("-"));
    for (size_t i = 0; i < 8; ++i) {
        if (i == 2) text.append(ZCK_TEXT("-"));
        text.append(HexToText(id.Data4[i], 2));
    }
    return text.append(ZCK_TEXT("}"));
}

GUID IdentifierFromText(TextView text) noexcept {
    // The first three fields stand in memory with their low byte first.
    constexpr size_t kPlaces[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    uint8_t bytes[16] = {};
    size_t count = 0;
    for (size_t at = 0; at + 1 < text.size(); ++at) {
        const int high = HexDigit(text[at]);
        const int low = HexDigit(text[at + 1]);
        if (high < 0 || low < 0) continue;
        if (count == 16) return GUID{};
        bytes[kPlaces[count++]] = static_cast<uint8_t>(high << 4 | low);
        ++at;
    }
    GUID id = {};
    if (count == 16) std::memcpy(&id, bytes, sizeof(id));
    return id;
}

}    // namespace zck
