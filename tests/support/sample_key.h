// The key that tests of several rooms know line for line.
#pragma once

#include <string>

#include "zchromakey/key_types.h"

namespace zck::test {

inline CHROMA_KEY_RAW SampleKey() {
    CHROMA_KEY_RAW raw = {};
    raw.eType = eCKT_HLS;
    raw.nKeysUsed = 1;
    raw.arrKeys[0].nValue = static_cast<int32_t>(0xFF3C8040);
    raw.arrKeys[0].nDelta = 0x2A2A2A05;
    raw.arrKeys[0].nSmoothRange = 26;
    raw.nMinTransparent = 102;
    raw.nMaxTransparent = 230;
    raw.nEdgesSmooth = 3;
    return raw;
}

/// Its record as saved, up to the adjustment.
inline const std::string kSampleRecord =
    "<m_config type='3' keys='1' transparent.min='102' transparent.max='230' edges_smooth='3' color_cancel='false' "
    "interlaced='0' inverse='0'>\r\n"
    "\t<key value='0xFF3C8040' delta='0x2A2A2A05' smooth='26' alpha='0' cancel.range='0' cancel.power='0' cancel.chroma='0' "
    "cancel.luma='0' cancel.alpha='0' reverse_key='0'/>\r\n";

/// The key as saved with the default adjustment.
inline const std::string kSampleText =
    kSampleRecord +
    "\t<adjust power='0.0' transparent='0.05' colors='0.0' smooth='0.25' min_trans='0.4' max_trans='0.9' exc_power='0.0'>\r\n"
    "\t\t<color range='1.0' power='0.3' chroma='-0.25' luma='-0.05' alpha='-0.05'/>\r\n"
    "\t\t<range rhy='0.66' glu='0.66' bsv='0.66'/>\r\n"
    "\t</adjust>\r\n"
    "</m_config>";

}    // namespace zck::test
