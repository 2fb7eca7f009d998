// The sample buffer interfaces where the system has none: the same slots, widths and identifiers.
#pragma once

#include "zchromakey/com.h"

using BYTE = uint8_t;

struct INSSBuffer : IUnknown {
    virtual HRESULT GetLength(DWORD *pdwLength) = 0;
    virtual HRESULT SetLength(DWORD dwLength) = 0;
    virtual HRESULT GetMaxLength(DWORD *pdwLength) = 0;
    virtual HRESULT GetBuffer(BYTE **ppdwBuffer) = 0;
    virtual HRESULT GetBufferAndLength(BYTE **ppdwBuffer, DWORD *pdwLength) = 0;
};

struct INSSBuffer2 : INSSBuffer {
    virtual HRESULT GetSampleProperties(DWORD size, BYTE *props) = 0;
    virtual HRESULT SetSampleProperties(DWORD size, BYTE *props) = 0;
};

struct INSSBuffer3 : INSSBuffer2 {
    virtual HRESULT SetProperty(GUID id, void *value, DWORD size) = 0;
    virtual HRESULT GetProperty(GUID id, void *value, DWORD *size) = 0;
};
