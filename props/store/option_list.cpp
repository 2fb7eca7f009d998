#include "props/store/option_list.h"

namespace zck {

std::vector<TextView> OptionItems(TextView values) {
    const TextView stroke = ZCK_TEXT("|");
    const TextView separators = values.find(stroke) != TextView::npos ? stroke : ZCK_TEXT(" \t\r\n;,");
    std::vector<TextView> items;
    for (size_t at = values.find_first_not_of(separators); at != TextView::npos;) {
        const size_t end = values.find_first_of(separators, at);
        items.push_back(values.substr(at, end - at));
        at = values.find_first_not_of(separators, end);
    }
    return items;
}

}    // namespace zck
