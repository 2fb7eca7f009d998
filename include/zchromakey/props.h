// `IZProps`: the settings of an object, as named text values in a tree.
#pragma once

#include "zchromakey/com.h"

/// What `IZProps::PropsInfoGet` is asked for.
enum eZInfoType : int32_t {
    eZIT_Help = 0,
    eZIT_Type = 1,
    eZIT_Default = 2,
    eZIT_Values = 3,
    eZIT_Min = 4,
    eZIT_Max = 5,
    eZIT_Node = 6,    ///< refused
};

/// Settings by name. A path uses "::" between nodes; a dot belongs to the name (`detect.max_keys`). Names are compared
/// without regard to case. Text that is handed out is freed by the caller with `SysFreeString`.
struct IZProps : IUnknown {
    virtual HRESULT Z_STDCALL PropsSet(BSTR _bsPropName, BSTR _bsPropValue) = 0;
    virtual HRESULT Z_STDCALL PropsGet(BSTR _bsPropName, BSTR *_pbsPropValue) = 0;
    virtual HRESULT Z_STDCALL PropsGetCount(BSTR _bsNodeName, int32_t *_pnCount) = 0;
    virtual HRESULT Z_STDCALL PropsGetByIndex(BSTR _bsNodeName, int32_t _nIndex, BSTR *_pbsPropName, BSTR *_pbsPropValue,
                                              int32_t *_pbNode) = 0;
    virtual HRESULT Z_STDCALL PropsRemove(BSTR _bsPropName) = 0;
    virtual HRESULT Z_STDCALL PropsInfoGet(BSTR _bsPropName, eZInfoType _eType, BSTR *_pbsInfo) = 0;
    virtual HRESULT Z_STDCALL PropsOptionGetCount(BSTR _bsPropName, int32_t *_pnOptionCount) = 0;
    virtual HRESULT Z_STDCALL PropsOptionGetByIndex(BSTR _bsPropName, int32_t _nOptionIdx, BSTR *_pbsOptionValue,
                                                    BSTR *_pbsHelp) = 0;
    virtual HRESULT Z_STDCALL PropsOptionSetByIndex(BSTR _bsPropName, int32_t _nOptionInx) = 0;
    virtual HRESULT Z_STDCALL PropsOptionGet(BSTR _bsPropName, int32_t *_pnOptionIdx, BSTR *_pbsOptionValue,
                                             BSTR *_pbsHelp) = 0;
};
Z_INTERFACE_ID(IZProps, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x03);
