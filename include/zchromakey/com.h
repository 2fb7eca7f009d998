// The object model's vocabulary: statuses, identifiers, counted strings, the task allocator, `IUnknown` and streams.
//
// On Windows these are the system's own. Elsewhere this header gives the same names with the same widths, values and
// slots, so that one host text serves both systems. It needs no library: blocks of the task allocator and counted
// strings are blocks of the C allocator, and any module of the process may free them.
#pragma once

#include <cstdint>

#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <objbase.h>
#include <objidl.h>
#include <oleauto.h>
#include <unknwn.h>
#include <windows.h>

#define Z_STDCALL STDMETHODCALLTYPE
#define Z_EXPORT __declspec(dllexport)

#else

#include <cstdlib>
#include <cstring>

using HRESULT = int32_t;
using ULONG = uint32_t;
using LONG = int32_t;
using DWORD = uint32_t;
using BOOL = int32_t;
using OLECHAR = char16_t;
using BSTR = OLECHAR *;
using LPOLESTR = OLECHAR *;
using LPCOLESTR = const OLECHAR *;

struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID &;
using REFIID = const IID &;
using REFCLSID = const CLSID &;

inline bool operator==(REFGUID a, REFGUID b) { return std::memcmp(&a, &b, sizeof(GUID)) == 0; }
inline bool operator!=(REFGUID a, REFGUID b) { return !(a == b); }

struct tagRECT {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};
using RECT = tagRECT;

#define Z_STDCALL
#define Z_EXPORT __attribute__((visibility("default")))

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001);
constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFF);
constexpr HRESULT E_ACCESSDENIED = static_cast<HRESULT>(0x80070005);
constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);
constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111);

constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
constexpr bool FAILED(HRESULT hr) { return hr < 0; }

/// The root of every interface: three slots, no virtual destructor.
struct IUnknown {
    virtual HRESULT QueryInterface(REFIID riid, void **ppv) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
};

/// Creates objects of one class. `LockServer` keeps the module loaded.
struct IClassFactory : IUnknown {
    virtual HRESULT CreateInstance(IUnknown *pOuter, REFIID riid, void **ppv) = 0;
    virtual HRESULT LockServer(BOOL bLock) = 0;
};

union LARGE_INTEGER {
    struct {
        uint32_t LowPart;
        int32_t HighPart;
    } u;
    int64_t QuadPart;
};
union ULARGE_INTEGER {
    struct {
        uint32_t LowPart;
        uint32_t HighPart;
    } u;
    uint64_t QuadPart;
};

struct FILETIME {
    uint32_t dwLowDateTime;
    uint32_t dwHighDateTime;
};

/// What a stream says about itself.
struct STATSTG {
    LPOLESTR pwcsName;    ///< of the task allocator, or null
    DWORD type;
    ULARGE_INTEGER cbSize;
    FILETIME mtime;
    FILETIME ctime;
    FILETIME atime;
    DWORD grfMode;
    DWORD grfLocksSupported;
    CLSID clsid;
    DWORD grfStateBits;
    DWORD reserved;
};

/// Origins of `IStream::Seek`.
constexpr DWORD STREAM_SEEK_SET = 0;
constexpr DWORD STREAM_SEEK_CUR = 1;
constexpr DWORD STREAM_SEEK_END = 2;

/// Bytes in a row. Fewer bytes than asked for are no failure: the counts tell.
struct ISequentialStream : IUnknown {
    virtual HRESULT Read(void *pv, ULONG cb, ULONG *pcbRead) = 0;
    virtual HRESULT Write(const void *pv, ULONG cb, ULONG *pcbWritten) = 0;
};

/// Bytes with a position.
struct IStream : ISequentialStream {
    virtual HRESULT Seek(LARGE_INTEGER dlibMove, DWORD dwOrigin, ULARGE_INTEGER *plibNewPosition) = 0;
    virtual HRESULT SetSize(ULARGE_INTEGER libNewSize) = 0;
    virtual HRESULT CopyTo(IStream *pstm, ULARGE_INTEGER cb, ULARGE_INTEGER *pcbRead, ULARGE_INTEGER *pcbWritten) = 0;
    virtual HRESULT Commit(DWORD grfCommitFlags) = 0;
    virtual HRESULT Revert() = 0;
    virtual HRESULT LockRegion(ULARGE_INTEGER libOffset, ULARGE_INTEGER cb, DWORD dwLockType) = 0;
    virtual HRESULT UnlockRegion(ULARGE_INTEGER libOffset, ULARGE_INTEGER cb, DWORD dwLockType) = 0;
    virtual HRESULT Stat(STATSTG *pstatstg, DWORD grfStatFlag) = 0;
    virtual HRESULT Clone(IStream **ppstm) = 0;
};

/// An object that knows its class.
struct IPersist : IUnknown {
    virtual HRESULT GetClassID(CLSID *pClassID) = 0;
};

/// An object that a stream keeps.
struct IPersistStream : IPersist {
    /// `S_FALSE` when there is nothing to save.
    virtual HRESULT IsDirty() = 0;
    virtual HRESULT Load(IStream *pStm) = 0;
    virtual HRESULT Save(IStream *pStm, BOOL fClearDirty) = 0;
    /// Bytes that `Save` will need at most.
    virtual HRESULT GetSizeMax(ULARGE_INTEGER *pcbSize) = 0;
};

inline constexpr IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IClassFactory = {0x00000001, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_ISequentialStream = {0x0C733A30, 0x2A1C, 0x11CE, {0xAD, 0xE5, 0x00, 0xAA, 0x00, 0x44, 0x77, 0x3D}};
inline constexpr IID IID_IStream = {0x0000000C, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IPersist = {0x0000010C, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IPersistStream = {0x00000109, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

/// What a bitmap says about itself, in memory and in files.
struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    uint16_t biPlanes;
    uint16_t biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40);

/// A picture outside of any frame, in one block of the C allocator. Its rows stand behind the header, the bottom one first:
/// blue, green, red, alpha.
struct Z_BITMAP {
    BITMAPINFOHEADER header;    ///< 32 bits, no compression, positive height
};
using HBITMAP = Z_BITMAP *;

/// Frees a bitmap. 0 for null.
inline BOOL DeleteObject(HBITMAP bitmap) {
    std::free(bitmap);
    return bitmap != nullptr ? 1 : 0;
}

inline void *CoTaskMemAlloc(std::size_t cb) { return std::malloc(cb != 0 ? cb : 1); }
inline void CoTaskMemFree(void *p) { std::free(p); }

/// A counted string of `count` units, zero-terminated, with its byte length in the 4 bytes before it. With `text` null
/// the units are zero. Null when there is no memory.
inline BSTR SysAllocStringLen(const OLECHAR *text, uint32_t count) {
    if (count > 0x7FFFFFF0U / sizeof(OLECHAR)) return nullptr;
    const uint32_t bytes = count * static_cast<uint32_t>(sizeof(OLECHAR));
    // Eight bytes in front keep the units aligned; the length stands in the last four of them.
    auto *block = static_cast<unsigned char *>(std::calloc(1, 8 + static_cast<std::size_t>(bytes) + sizeof(OLECHAR)));
    if (block == nullptr) return nullptr;
    std::memcpy(block + 4, &bytes, 4);
    if (text != nullptr && bytes != 0) std::memcpy(block + 8, text, bytes);
    return reinterpret_cast<BSTR>(block + 8);
}

inline BSTR SysAllocString(const OLECHAR *text) {
    if (text == nullptr) return nullptr;
    uint32_t count = 0;
    while (text[count] != 0) ++count;
    return SysAllocStringLen(text, count);
}

inline void SysFreeString(BSTR text) {
    if (text != nullptr) std::free(reinterpret_cast<unsigned char *>(text) - 8);
}

inline uint32_t SysStringByteLen(BSTR text) {
    uint32_t bytes = 0;
    if (text != nullptr) std::memcpy(&bytes, reinterpret_cast<unsigned char *>(text) - 4, 4);
    return bytes;
}

inline uint32_t SysStringLen(BSTR text) { return SysStringByteLen(text) / static_cast<uint32_t>(sizeof(OLECHAR)); }

extern "C" {
/// The class factory of one of the module's classes. `CLASS_E_CLASSNOTAVAILABLE` for an identifier that is none of them.
Z_EXPORT HRESULT DllGetClassObject(REFCLSID rclsid, REFIID riid, void **ppv);
/// `S_OK` when no object of the module lives and no factory holds a lock, otherwise `S_FALSE`.
Z_EXPORT HRESULT DllCanUnloadNow();
}

#endif

static_assert(sizeof(OLECHAR) == 2 && sizeof(HRESULT) == 4 && sizeof(GUID) == 16);

/// The identifier of an interface, for typed queries: `ZIidOf<IZFrame>()`.
template <class Interface>
struct ZIidHolder;

template <>
struct ZIidHolder<IUnknown> {
    static const IID &Get() { return IID_IUnknown; }
};

template <>
struct ZIidHolder<IClassFactory> {
    static const IID &Get() { return IID_IClassFactory; }
};

template <>
struct ZIidHolder<IStream> {
    static const IID &Get() { return IID_IStream; }
};

template <>
struct ZIidHolder<IPersistStream> {
    static const IID &Get() { return IID_IPersistStream; }
};

template <class Interface>
const IID &ZIidOf() {
    return ZIidHolder<Interface>::Get();
}

/// Gives an interface its identifier: the constant `IID_<name>` and the answer of `ZIidOf<name>()`.
#define Z_INTERFACE_ID(name, d1, d2, d3, b0, b1, b2, b3, b4, b5, b6, b7)              \
    inline constexpr IID IID_##name = {d1, d2, d3, {b0, b1, b2, b3, b4, b5, b6, b7}}; \
    template <>                                                                       \
    struct ZIidHolder<name> {                                                         \
        static const IID &Get() { return IID_##name; }                                \
    }
