// `KeyFrames`: the frames of a key object, under the frame lock.
#pragma once

#include "platform/com_ptr.h"
#include "platform/sync.h"
#include "zchromakey/frame.h"

namespace zck {

/// The key object's frames at one moment. Holds references of its own.
struct FrameSet {
    ComPtr<IZFrame> keying;           ///< reference frame as given
    ComPtr<IZFrame> keyingArgb;       ///< its view in `eZFCC_ARGB32`; empty where it could not be made
    ComPtr<IZFrame> background;       ///< as given, or empty
    ComPtr<IZFrame> backgroundFit;    ///< the background in the size of a preview, or empty
    uint64_t keyingSerial = 0;        ///< which reference it is, counted from the first
    uint64_t backgroundSerial = 0;    ///< which background
};

/// Any thread may call. The lock is held for the exchange of references only: no frame is called or released under it.
class KeyFrames {
public:
    /// As `IZKey::KeyFrameSet`. The new reference and its view take their places together.
    HRESULT Set(IUnknown *keying, IUnknown *background);

    FrameSet Now() const;

    /// Keeps the fitted background of `from`, unless the background has been replaced since.
    void FitKeep(const FrameSet &from, const ComPtr<IZFrame> &fit);

private:
    mutable FrameRWLock m_lock;
    FrameSet m_frames;
};

}    // namespace zck
