// The door of the library: class identifiers and exported functions.
#pragma once

#include "zchromakey/com.h"

/// The keyer: `IZChromaKey`, `IZPlugin`, `IZProps`, `IZPersist`.
inline constexpr CLSID CLSID_ZChromaKey = {0x6B0F1D32, 0x8E54, 0x4C1B, {0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x81}};
/// The key object: `IZKey`, `IZProps`, `IZPersist`.
inline constexpr CLSID CLSID_ZKey = {0x6B0F1D32, 0x8E54, 0x4C1B, {0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x82}};

extern "C" {
#ifndef _WIN32
/// The class factory of one of the two classes. `CLASS_E_CLASSNOTAVAILABLE` for any other identifier.
Z_EXPORT HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, void **ppv);
/// `S_OK` when no object of the module lives and no factory holds a lock, otherwise `S_FALSE`.
Z_EXPORT HRESULT DllCanUnloadNow();
#endif
/// A frame factory (`IZFrames`) for hosts that bring no frames of their own. `E_POINTER` for a null output,
/// `E_NOINTERFACE` for an interface that it does not have.
Z_EXPORT HRESULT Z_STDCALL ZFramesCreate(REFIID riid, void **ppv);
}
