#include "props/store/computed.h"

#include "platform/module_info.h"

namespace zck {

bool ComputedProperty(TextView name, Text &value) {
    if (!StartsWithNoCase(name, ZCK_TEXT("dll-"))) return false;
    if (EqualNoCase(name, ZCK_TEXT("dll-version"))) {
        value = ModuleProductVersion();
    } else if (EqualNoCase(name, ZCK_TEXT("dll-file-version"))) {
        value = ModuleFileVersion();
    } else if (EqualNoCase(name, ZCK_TEXT("dll-path"))) {
        value = ModulePath();
    } else if (EqualNoCase(name, ZCK_TEXT("dll-date"))) {
        value = TextFromUtf8(__DATE__ " " __TIME__);
    } else {
        return false;
    }
    return true;
}

}    // namespace zck
