// A frame on its way into the keyer: the clone that will leave, and the rows that are fetched into it just before they are
// keyed.
#pragma once

#include "frames/views/frame_shell.h"
#include "imaging/colour/convert.h"
#include "imaging/colour/planar_plan.h"
#include "keying/pipeline/row_source.h"
#include "platform/com_ptr.h"

namespace zck {

/// An `eZFCC_ARGB32` clone whose pixels come row by row, so that a frame is walked once instead of twice. The bytes are those
/// of `IZFrame::FrameClone(eZFC_Full, eZFCC_ARGB32)`.
class CFrameSource {
public:
    /// `S_OK`: the clone is made, its pixels are not yet written. `S_FALSE`: the frame cannot be taken this way (a frame of
    /// another maker, a conversion whose rows depend on each other, nothing to convert), and nothing is held.
    HRESULT Open(IZFrame *frame);

    IZFrame *Clone() const { return m_clone.get(); }
    uint8_t *Pixels() const;
    int32_t Bytes() const { return m_shell.cbClone; }
    const Z_VID_PROPS &Props() const { return m_shell.clone; }

    /// Fetches the rows of this object, which outlives it.
    RowSource Rows() { return {this, &CFrameSource::Fetch, m_bInPlace ? &CFrameSource::View : nullptr}; }

private:
    static HRESULT Fetch(void *context, int32_t row, uint8_t *dst);
    static const uint8_t *View(void *context, int32_t row);

    bool PrepareRows();
    bool PrepareConversion();
    void CopyRow(int32_t row, uint8_t *dst) const;
    const uint8_t *SourceRow(int32_t row) const;

    ComPtr<IZFrame_I> m_clone;
    ComPtr<IZFrame_I> m_local;
    ZF_SHELL m_shell = {};
    ConvertPlan m_plan;
    PlanarPlan m_planar;
    bool m_bPlanar = false;     // the second plan has the rows
    bool m_bInPlace = false;    // the source has the clone's bytes, in whole rows
};

}    // namespace zck
