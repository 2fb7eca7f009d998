#include "platform/module_info.h"

#include <algorithm>
#include <cstring>

namespace zck {
namespace {

HMODULE ThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ThisModule), &module);
    return module;
}

/// The fixed part of the module's version resource; false when there is none.
bool FixedVersion(VS_FIXEDFILEINFO &fixed) {
    // Three words and the key "VS_VERSION_INFO" with its zero, up to a multiple of 4.
    constexpr DWORD kFixedOffset = 40;
    const HMODULE module = ThisModule();
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), MAKEINTRESOURCEW(16));    // RT_VERSION
    if (found == nullptr || SizeofResource(module, found) < kFixedOffset + sizeof(fixed)) return false;
    const HGLOBAL loaded = LoadResource(module, found);
    const void *bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) return false;
    std::memcpy(&fixed, static_cast<const uint8_t *>(bytes) + kFixedOffset, sizeof(fixed));
    return fixed.dwSignature == VS_FFI_SIGNATURE;
}

Text VersionText(DWORD high, DWORD low) {
    Text text;
    for (const DWORD part : {high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF}) {
        if (!text.empty()) text.append(ZCK_TEXT("."));
        text.append(TextFromInt(part));
    }
    return text;
}

}    // namespace

Text ModulePath() {
    Text path(kMostModulePath + 1, static_cast<OLECHAR>(0));
    const DWORD units = GetModuleFileNameW(ThisModule(), path.data(), static_cast<DWORD>(path.size()));
    path.resize(std::min<size_t>(units, kMostModulePath));
    return path;
}

Text ModuleProductVersion() {
    VS_FIXEDFILEINFO fixed = {};
    if (!FixedVersion(fixed)) return TextFromUtf8(ZCK_BUILD_VERSION);
    return VersionText(fixed.dwProductVersionMS, fixed.dwProductVersionLS);
}

Text ModuleFileVersion() {
    VS_FIXEDFILEINFO fixed = {};
    if (!FixedVersion(fixed)) return TextFromUtf8(ZCK_BUILD_VERSION);
    return VersionText(fixed.dwFileVersionMS, fixed.dwFileVersionLS);
}

}    // namespace zck
