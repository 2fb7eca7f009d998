// Operations whose rooms are not built yet: conversion, mixing and text. They keep their slots.
#include "frames/object/frame.h"

namespace zck {
namespace {

template <class T>
HRESULT Absent(T **out) {
    if (out != nullptr) *out = nullptr;
    return E_NOTIMPL;
}

}    // namespace

HRESULT CCoZFrame2::ZFOverlay(IZFFrame *, IZFFrame *, int32_t, int32_t, double, BSTR, int64_t, int32_t) { return E_NOTIMPL; }
HRESULT CCoZFrame2::ZFConvert(Z_AV_PROPS *, IZFFrame **, int32_t *, BSTR, int64_t) { return E_NOTIMPL; }
HRESULT CCoZFrame2::ZFResize(eZFCC, int32_t, int32_t, int32_t, IZFFrame **_ppFrameRes, BSTR, int64_t) {
    return Absent(_ppFrameRes);
}
HRESULT CCoZFrame2::ZFTransition(IZFFrame *, IZFFrame **, double, int64_t, BSTR, int64_t) { return E_NOTIMPL; }
HRESULT CCoZFrame2::ZFPrint(BSTR, double, PrintRect *, uint32_t, BSTR, int64_t) { return E_NOTIMPL; }
HRESULT CCoZFrame2::ZFOverlayRect(IZFFrame *, IZFFrame *, PrintRect *, int32_t, double, BSTR, int64_t) { return E_NOTIMPL; }

}    // namespace zck
