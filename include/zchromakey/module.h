// The door of the library: class identifiers and exported functions. The two functions of the object model,
// `DllGetClassObject` and `DllCanUnloadNow`, are declared by com.h.
#pragma once

#include "zchromakey/com.h"

/// The keyer: `IZChromaKey`, `IZPlugin`, `IZProps`, `IZPersist`.
inline constexpr CLSID CLSID_ZChromaKey = {0x6B0F1D32, 0x8E54, 0x4C1B, {0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x81}};
/// The key object: `IZKey`, `IZProps`, `IZPersist`.
inline constexpr CLSID CLSID_ZKey = {0x6B0F1D32, 0x8E54, 0x4C1B, {0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x82}};

extern "C" {
/// A frame factory (`IZFrames`) for hosts that bring no frames of their own. `E_POINTER` for a null output,
/// `E_NOINTERFACE` for an interface that it does not have.
Z_EXPORT HRESULT Z_STDCALL ZFramesCreate(REFIID riid, void **ppv);
}
