// The conversion of one field, or of a whole picture, of a pair that has been lined up and fitted.
#pragma once

#include <cstdint>

#include "imaging/convert/conversion_plan.h"
#include "imaging/engines/convert_frame.h"
#include "zchromakey/com.h"

namespace zck {

/// Whether a field of this picture can be converted by itself: planes have no rows of one field, and in a field half a row,
/// where the second of two eyes side by side would begin, is a row of the other field. `target`: that of the conversion.
bool FieldStandsAlone(const Z_VID_PROPS &picture, const Z_VID_PROPS &target);

/// A pair of pictures. After `Prepare` it is constant, and two threads may run a field each: they write disjoint rows.
class FieldStep {
public:
    /// Takes the pair over, completes the records, lines up pictures of 480 and 486, 576 and 625 lines (the top of a taller
    /// target becomes black), and decides how the source is fitted. `bothFields`: the fields will be run one by one.
    ///
    /// `E_POINTER`, `E_UNEXPECTED` for a record without size or row bytes, 0x80040248 when a memory does not hold its image.
    HRESULT Prepare(const EngineSource &source, const EngineTarget &target, FieldMode mode, bool bothFields, int32_t quality);

    /// One of the two fields, by its time in the source, into the rows of the target that have the same place in memory.
    HRESULT RunField(FieldConverter *fields, int32_t field) const;

    /// All of it: the first field of the source alone, or all rows, as `mode` says.
    HRESULT RunPicture(FieldConverter *fields) const;

private:
    EngineSource Source() const { return {m_src, m_srcBytes, &m_source}; }
    EngineTarget Target() const { return {m_dst, nullptr, nullptr, m_dstBytes, &m_target}; }

    const uint8_t *m_src = nullptr;
    uint8_t *m_dst = nullptr;
    int64_t m_srcBytes = 0;
    int64_t m_dstBytes = 0;
    Z_VID_PROPS m_source = {};
    Z_VID_PROPS m_target = {};
    FieldMode m_mode = FieldMode::kBoth;
    int32_t m_quality = 0;
};

}    // namespace zck
