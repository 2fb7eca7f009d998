// `CSliceThreads`: one frame keyed by up to 16 threads, its edges smoothed, its colour multiplied by its alpha.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "keying/pipeline/pipeline.h"
#include "keying/pipeline/row_source.h"
#include "platform/sync.h"
#include "platform/worker_thread.h"

namespace zck {

/// Whether the caller of `Dispatch` asks for the alpha in the pixels. Kept for the interface; no worker reads it.
enum class WriteAlpha { No, Yes };
/// Whether `Dispatch` leaves the slices running and returns at once.
enum class ReturnEarly { No, Yes };

/// The pool. Threads start with the first frame and stay until the count changes, a frame takes too long, or the pool
/// ends. One `Dispatch` at a time.
class CSliceThreads {
public:
    static constexpr int32_t kSlotsMax = 16;
    static constexpr uint32_t kWaitMs = 10000;

    CSliceThreads();
    /// Stops all threads, with 10000 ms each, and terminates those that do not end.
    ~CSliceThreads();
    CSliceThreads(const CSliceThreads &) = delete;
    CSliceThreads &operator=(const CSliceThreads &) = delete;

    int32_t ThreadCount() const { return m_count; }

    /// 6 at first. Counts above 16 are 16. `S_FALSE` if nothing changes; `E_INVALIDARG` below 1. A change waits for the slices
    /// and stops all threads; they come back with the next frame.
    HRESULT SetThreadCount(int32_t n);

    /// Waits for the slices, always at most 10000 ms. `S_FALSE` before the first frame; 0x800705B4 after a time-out, with all
    /// threads stopped.
    HRESULT WaitDone(uint32_t timeoutMs = kWaitMs);

    /// Keys the frame in place and leaves its final alpha in `alpha` (|`nHeight`| rows of `AlphaStride` bytes): slice i of N
    /// has the rows i, i + N and so on; the |`nHeight`| mod N rows at the bottom belong to no slice and keep the alpha that the
    /// plane held. They are worked on at the same time, or one after another where a row is no whole number of pixels and they
    /// reach into each other. With more than one slice `FinishAlpha` follows. In the end every pixel is multiplied by its
    /// alpha. The field treatment is the frame's, whatever the key says.
    ///
    /// With `source` the rows of the frame are fetched into `pixels` first, all of them, also for a type that keys nothing;
    /// only after a failure the frame is incomplete.
    ///
    /// `pixelBytes` is the size of the buffer at `pixels`, 0 for |`nHeight`| whole rows; a last row may end with its last
    /// pixel.
    ///
    /// `E_POINTER`; `E_INVALIDARG` for props that describe no picture; `S_FALSE` for a type that keys nothing, and with
    /// `ReturnEarly::Yes`; 0x800705B4; else the status of slice 0 if it failed, otherwise that of slice 1 (with one thread:
    /// what it held). Failures of further slices go unseen. Frames with an alpha byte get their alpha, those without get it
    /// from more than one slice, whatever `bWriteAlpha` says.
    HRESULT Dispatch(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *vidProps, const CHROMA_KEY_RAW *key,
                     WriteAlpha bWriteAlpha, ReturnEarly bReturnEarly, const RowSource *source = nullptr,
                     int64_t pixelBytes = 0);

private:
    struct Frame;
    static void Body(void *owner, int32_t index, CWorkerThread &self);
    HRESULT BeginWork(ReturnEarly bReturnEarly);
    HRESULT KeySlices(ReturnEarly bReturnEarly);
    HRESULT KeyNothing(ReturnEarly bReturnEarly);
    void StopAll();
    /// Makes what `WakeAll` needs, so that nothing can fail once the first thread works.
    HRESULT MakeEvents();
    void WakeAll();

    std::array<CWorkerThread, kSlotsMax> m_threads;
    std::array<std::unique_ptr<Event>, kSlotsMax> m_done;
    std::array<HRESULT, kSlotsMax> m_status = {};
    int32_t m_count = 6;
    std::unique_ptr<Frame> m_frame;
};

/// The pass over the whole plane after the slices: smoothing of the edges (which never grows them), inversion, and the alpha
/// into 32-bit pixels. With `nInterlacedVideo` of the key the fields are treated apart. `E_POINTER`, `E_INVALIDARG` as
/// `CK_GetAlphaKeyEx3`; 0xFFFFFFFA for smoothing of a plane without interior, and the pass then ends there.
HRESULT FinishAlpha(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *props, const CHROMA_KEY_RAW *key);

}    // namespace zck
