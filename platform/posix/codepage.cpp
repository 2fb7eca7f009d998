#include "platform/codepage.h"

namespace zck {

Text TextFromCodePage(std::string_view bytes) { return TextFromUtf8(bytes); }

std::string CodePageFromText(TextView text) { return Utf8FromText(text); }

}    // namespace zck
