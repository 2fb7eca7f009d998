// The statuses of the library besides the common ones of com.h. The values are the same on every system.
#pragma once

#include "zchromakey/com.h"

constexpr HRESULT Z_E_UNSUPPORTED_FORMAT = static_cast<HRESULT>(0x80040201);    ///< no conversion serves the pixel format
constexpr HRESULT Z_E_WRONG_STATE = static_cast<HRESULT>(0x80040227);           ///< the object is not ready for this operation
constexpr HRESULT Z_E_INVALID_VIDEO_PROPS =
    static_cast<HRESULT>(0x80040248);    ///< unusable descriptor, or it exceeds its buffer
constexpr HRESULT Z_E_CLASS_NOT_REGISTERED = static_cast<HRESULT>(0x80040154);    ///< the object model knows no such class

// Errors of the system have the form 0x8007xxxx.
constexpr HRESULT Z_E_FILE_NOT_FOUND = static_cast<HRESULT>(0x80070002);
constexpr HRESULT Z_E_ACCESS_DENIED = static_cast<HRESULT>(0x80070005);
constexpr HRESULT Z_E_HANDLE_EOF = static_cast<HRESULT>(0x80070026);    ///< nothing is left to read
constexpr HRESULT Z_E_NOT_SUPPORTED = static_cast<HRESULT>(0x80070032);
constexpr HRESULT Z_E_DISK_FULL = static_cast<HRESULT>(0x80070070);
constexpr HRESULT Z_E_ALREADY_EXISTS = static_cast<HRESULT>(0x800700B7);
constexpr HRESULT Z_E_INVALID_INDEX = static_cast<HRESULT>(0x80070585);
constexpr HRESULT Z_E_TIMEOUT = static_cast<HRESULT>(0x800705B4);    ///< the keyer's threads did not end in time
constexpr HRESULT Z_E_EMPTY = static_cast<HRESULT>(0x800710D2);      ///< there is nothing to be given
