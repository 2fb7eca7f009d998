#include "imaging/files/file_extension.h"

namespace zck {

TextView FileExtension(TextView name) noexcept {
    if (name.data() == nullptr) return ZCK_TEXT("!ERR");
    const size_t folder = name.find_last_of(ZCK_TEXT("/\\:"));
    const size_t dot = name.find_last_of(OLECHAR{'.'});
    const bool has = dot != TextView::npos && (folder == TextView::npos || dot > folder);
    return has ? name.substr(dot) : TextView();
}

}    // namespace zck
