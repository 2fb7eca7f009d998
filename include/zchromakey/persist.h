// `IZPersist`: saves an object's configuration to a file or a string and loads it back.
#pragma once

#include "zchromakey/com.h"

/// Configuration as XML text. `_bsObject` is passed on to the object and ignored by the objects of this library.
struct IZPersist : IUnknown {
    /// Saves to the file. `_bsSaveParam`: name=value pairs; "unicode" set to true writes 16-bit text.
    virtual HRESULT Z_STDCALL PersistSaveToFile(BSTR _bsObject, BSTR _bsFileName, BSTR _bsSaveParam) = 0;
    /// Saves to a text, which the caller frees with `SysFreeString`.
    virtual HRESULT Z_STDCALL PersistSaveToString(BSTR _bsObject, BSTR *_pbsXMLDesc, BSTR _bsSaveParam) = 0;
    /// Loads from a text, or from the file that it names.
    virtual HRESULT Z_STDCALL PersistLoad(BSTR _bsObject, BSTR _bsXMLDescOrFile, BSTR _bsLoadParam) = 0;
};
Z_INTERFACE_ID(IZPersist, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x04);
