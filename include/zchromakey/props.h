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

/// Settings by name. A path uses "::" between nodes, each of them chosen by a number in parentheses among siblings of one name
/// (`effects(2)::level`, counted from 0); a dot belongs to the name (`detect.max_keys`). Names are compared without regard to
/// case, any name may be set, and `properties.h` lists those that the keyer reads.
///
/// Free-threaded: operations that read run side by side, `PropsSet` and `PropsRemove` run alone. Text that is handed out is
/// freed by the caller with `SysFreeString`; where an output may be null its text is not made.
struct IZProps : IUnknown {
    /// Sets a value. A null or empty name addresses the whole tree: a list of name='value' pairs is merged into it, XML
    /// replaces it, an empty value removes all attributes, and any other text becomes the root's text. "_info_enum_" takes a
    /// boolean that says whether a listing shows described properties (true) or stored ones (false); an empty value returns to
    /// the automatic choice. `E_INVALIDARG` for a null value without a name and for a path that cannot be made.
    virtual HRESULT Z_STDCALL PropsSet(BSTR _bsPropName, BSTR _bsPropValue) = 0;
    /// The value of a property: an attribute's text, or a node's, or a node's attributes as a list when it has no text; without
    /// a name the whole tree as XML. "dll-version", "dll-file-version", "dll-path" and "dll-date" are computed. `S_FALSE` and
    /// null when there is no such property; `E_POINTER` for a null output.
    virtual HRESULT Z_STDCALL PropsGet(BSTR _bsPropName, BSTR *_pbsPropValue) = 0;
    /// How many entries a node has for `PropsGetByIndex`; the root without a name. `E_POINTER` for a null output,
    /// `E_INVALIDARG` for a node that is not there.
    virtual HRESULT Z_STDCALL PropsGetCount(BSTR _bsNodeName, int32_t *_pnCount) = 0;
    /// An entry of a node: attributes first, then child nodes, for which `_pbNode` is 1. Each output may be null. The node name
    /// "_info_" walks the described properties of the root. 0x80070585 for an index out of range, `E_INVALIDARG` for a node
    /// that is not there.
    virtual HRESULT Z_STDCALL PropsGetByIndex(BSTR _bsNodeName, int32_t _nIndex, BSTR *_pbsPropName, BSTR *_pbsPropValue,
                                              int32_t *_pbNode) = 0;
    /// Removes an attribute, or else a node; "_all_props_" removes all attributes of the root, "_all_nodes_" all its nodes.
    /// `E_INVALIDARG` for an empty name and for one that is not there.
    virtual HRESULT Z_STDCALL PropsRemove(BSTR _bsPropName) = 0;
    /// What the tree's "attributes_info" nodes say about a property; the keyer brings none, so that a host may describe its
    /// own. `S_FALSE` when they say nothing, `E_INVALIDARG` for an empty name and for `eZIT_Node`.
    virtual HRESULT Z_STDCALL PropsInfoGet(BSTR _bsPropName, eZInfoType _eType, BSTR *_pbsInfo) = 0;
    /// How many values `eZIT_Values` lists, 0 when there is no list. `E_POINTER` for a null output.
    virtual HRESULT Z_STDCALL PropsOptionGetCount(BSTR _bsPropName, int32_t *_pnOptionCount) = 0;
    /// A value of that list and its help; each output may be null. 0x80070585 for an index out of range.
    virtual HRESULT Z_STDCALL PropsOptionGetByIndex(BSTR _bsPropName, int32_t _nOptionIdx, BSTR *_pbsOptionValue,
                                                    BSTR *_pbsHelp) = 0;
    /// Sets the property to a value of that list. 0x80070585 for an index out of range, otherwise as `PropsSet`.
    virtual HRESULT Z_STDCALL PropsOptionSetByIndex(BSTR _bsPropName, int32_t _nOptionInx) = 0;
    /// The present value, its place in that list (-1 when it is none of them) and its help; each output may be null. 0x80070002
    /// when the property has no value.
    virtual HRESULT Z_STDCALL PropsOptionGet(BSTR _bsPropName, int32_t *_pnOptionIdx, BSTR *_pbsOptionValue,
                                             BSTR *_pbsHelp) = 0;
};
Z_INTERFACE_ID(IZProps, 0x6B0F1D32, 0x8E54, 0x4C1B, 0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x03);
