#include "keying/plugin/frame_source.h"

#include <algorithm>
#include <cstring>

#include "frames/media/row_count.h"

namespace zck {

HRESULT CFrameSource::Open(IZFrame *frame) {
    const ComPtr<IZFrameShell> maker = QueryFor<IZFrameShell>(frame);
    if (!maker) return S_FALSE;
    HRESULT hr = maker->CloneShell(frame, eZFC_Full, eZFCC_ARGB32, m_clone.Put(), m_local.Put(), &m_shell);
    if (hr == S_OK && !PrepareRows()) hr = S_FALSE;
    if (hr == S_OK) return S_OK;
    m_clone.Reset();
    m_local.Reset();
    return S_FALSE;
}

uint8_t *CFrameSource::Pixels() const { return reinterpret_cast<uint8_t *>(m_shell.pbClone); }

bool CFrameSource::PrepareRows() {
    const Z_VID_PROPS &clone = m_shell.clone;
    // Picture rows and stored rows are the same in a top-down clone.
    if (m_shell.bConvert != 0) return clone.nHeight < 0 && PrepareConversion();
    if (clone.nRowBytes <= 0) return false;
    // Bytes behind the last row are copied as well.
    const int64_t end = RowCount(clone.nHeight) * clone.nRowBytes;
    m_bInPlace = end <= m_shell.cbSource;
    if (end < m_shell.cbClone)
        std::memcpy(Pixels() + end, reinterpret_cast<const uint8_t *>(m_shell.pbSource) + end,
                    static_cast<std::size_t>(m_shell.cbClone - end));
    return true;
}

bool CFrameSource::PrepareConversion() {
    const Z_VID_PROPS &clone = m_shell.clone;
    m_bPlanar = SUCCEEDED(m_planar.Prepare(&m_shell.source, m_shell.cbSource, &clone, m_shell.cbClone));
    if (m_bPlanar) return m_planar.RowsIndependent() && m_planar.Rows() == -clone.nHeight;
    return SUCCEEDED(m_plan.Prepare(&m_shell.source, m_shell.cbSource, &clone, m_shell.cbClone)) && m_plan.RowsIndependent() &&
           m_plan.Rows() == -clone.nHeight;
}

HRESULT CFrameSource::Fetch(void *context, int32_t row, uint8_t *dst) {
    const auto &self = *static_cast<const CFrameSource *>(context);
    const auto *source = reinterpret_cast<const uint8_t *>(self.m_shell.pbSource);
    if (self.m_shell.bConvert == 0)
        self.CopyRow(row, dst);
    else if (self.m_bPlanar)
        self.m_planar.RunRows(source, self.Pixels(), row, row + 1);
    else
        self.m_plan.RunRows(source, self.Pixels(), row, row + 1);
    return S_OK;
}

void CFrameSource::CopyRow(int32_t row, uint8_t *dst) const {
    const int64_t offset = int64_t{row} * m_shell.clone.nRowBytes;
    const int64_t bytes = std::min<int64_t>(m_shell.clone.nRowBytes, m_shell.cbClone - offset);
    if (bytes > 0) std::memcpy(dst, SourceRow(row), static_cast<std::size_t>(bytes));
}

const uint8_t *CFrameSource::View(void *context, int32_t row) {
    return static_cast<const CFrameSource *>(context)->SourceRow(row);
}

const uint8_t *CFrameSource::SourceRow(int32_t row) const {
    return reinterpret_cast<const uint8_t *>(m_shell.pbSource) + int64_t{row} * m_shell.clone.nRowBytes;
}

}    // namespace zck
