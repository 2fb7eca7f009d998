#include "frames/audio/channel_map.h"

#include "frames/audio/channels_buffer.h"

namespace zck {
namespace {

bool IsDigit(OLECHAR c) { return c >= '0' && c <= '9'; }
bool IsOfItem(OLECHAR c) { return IsDigit(c) || c == '-' || c == '.'; }

int32_t Value(TextView item) {
    int32_t value = 0;
    return ParseInt(item, value) ? value : 0;
}

}    // namespace

std::vector<int32_t> ChannelMapParse(TextView text) {
    std::vector<int32_t> list;
    size_t i = 0;
    while (i < text.size() && list.size() < ZChannelsBuffer::kChannelsMax) {
        const size_t start = i;
        while (i < text.size() && IsOfItem(text[i])) ++i;
        if (i != start)
            list.push_back(Value(text.substr(start, i - start)));
        else
            ++i;
    }
    return list;
}

}    // namespace zck
