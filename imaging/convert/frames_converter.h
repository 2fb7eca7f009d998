// One picture into another, fields and all: how its rows are chosen, which threads do them, and what is kept between pictures.
#pragma once

#include <memory>

#include "imaging/convert/conversion_plan.h"
#include "imaging/engines/convert_frame.h"
#include "imaging/geometry/rotate_bits.h"
#include "platform/sync.h"
#include "platform/worker_pool.h"

namespace zck {

class FieldStep;

/// Converts pictures, one at a time: its operations wait for each other. Tap tables and scratch are made on first use and kept,
/// so that a conversion of a kind that has been before takes no memory. Making one throws `std::bad_alloc`.
class FramesConverter {
public:
    /// Converts the source into `target.dst`. The target has the bytes of `FrameBufferSize` of its record.
    ///
    /// With `FieldMode::kBoth` an interlaced source goes field by field on two threads when the quality is below 10 and no
    /// record is planar, each field into the rows that it has in the source; where the orders of the fields differ the picture
    /// then moves by one line in memory, and the line that is left over stays. A target that says that it is progressive is
    /// made of the first field alone. All else is one conversion on this thread, with the help of another for large pictures.
    ///
    /// The statuses are those of `ConvertBits`; of two failing fields the first one's.
    HRESULT Convert(const EngineSource &source, const EngineTarget &target, FieldMode mode, int32_t quality) noexcept;

    /// `RotateBits` with the scratch that is kept.
    HRESULT Rotate(const EngineSource &source, const EngineTarget &target, bool bLeft, bool bInterlaced) noexcept;

private:
    HRESULT BothFields(const FieldStep &step) noexcept;
    HRESULT Whole(const FieldStep &step) noexcept;

    CriticalSection m_cs;
    FieldConverter m_field[2];
    RotateScratch m_rotate;
    const std::shared_ptr<WorkerPool> m_pPool = WorkerPool::Shared();    // held so that its threads stay
};

}    // namespace zck
