// `CCoZChromaKey`: the keyer that a host places in its video chain.
#pragma once

#include "frames/memory/blob_holder.h"
#include "frames/views/f_frame.h"
#include "keying/plugin/borders.h"
#include "keying/plugin/frame_process.h"
#include "keying/slices/slices.h"
#include "platform/object.h"
#include "platform/worker_thread.h"
#include "props/persist/persist_impl.h"
#include "props/store/props_impl.h"
#include "zchromakey/plugin.h"

namespace zck {

/// A frame enters through `OnMediaReceive`; a clone of it in `eZFCC_ARGB32` leaves with the alpha of the current key and
/// premultiplied colour. Free-threaded and aggregatable.
///
/// The output thread lives as long as the object; the slice threads start with the first frame. The last-frame lock and the
/// key lock are never held together, and neither is held while keying or while calling out. The pending and the finished
/// frame belong to the output thread while the output-done event is reset, and to the caller while it is set.
class CCoZChromaKey : public CoObject<IZChromaKey, IZPlugin, IZFProcessRedir<CCoZChromaKey>, IZPropsImpl<CCoZChromaKey>,
                                      IZPersistImpl<CCoZChromaKey, XMLParse::XMLNodePtr>> {
public:
    /// Has its default properties, and over them those that the user has stored.
    CCoZChromaKey();
    ~CCoZChromaKey() override;

    /// Starts the output thread; its failure is the failure of the creation.
    HRESULT FinalConstruct() override;

    // IZChromaKey
    HRESULT Z_STDCALL KeySet(IZKey *_pKeyObject) override;
    HRESULT Z_STDCALL KeyGet(IUnknown *_pZFrameForAdjustOrNull, IZKey **_ppKeyObject, BSTR _bsProps) override;
    HRESULT Z_STDCALL KeyRawSet(CHROMA_KEY_RAW *_pvmKey) override;
    HRESULT Z_STDCALL KeyRawGet(CHROMA_KEY_RAW *_pvmKey) override;

    // IZPlugin
    HRESULT Z_STDCALL OnMediaReceive(int64_t _llCallbackUserData, IUnknown *_pSender, IZFrame *_pFrame,
                                     IZFrame **_ppFrameRes) override;
    HRESULT Z_STDCALL OnMediaEnd(int64_t _llCallbackUserData, IUnknown *_pSender, uint32_t _dwFlags) override;
    HRESULT Z_STDCALL OnMediaFlush(int64_t _llCallbackUserData, IUnknown *_pSender, uint32_t _dwFlags) override;

    // IZPersistImpl
    HRESULT PersistTransfer(Transfer direction, TextView object, const XMLParse::XMLNodePtr &root, TextView path,
                            const XMLParse::XMLNodePtr &param);
    static const CLSID &PersistClassId();

protected:
    void *InterfaceFind(REFIID riid) noexcept override { return PersistViewFind(riid); }

    Event m_outputDone;    ///< the output thread has no frame to work on

private:
    static void OutputThread(void *owner, int32_t index, CWorkerThread &self);

    HRESULT ReceiveOverOutputThread(const ComPtr<IZFrame> &frame, IZFrame **result);
    HRESULT KeyingStep(IZFrame *frame, ComPtr<IZFrame> *result);
    /// `key` is of a type other than `eCKT_None`; one snapshot serves the whole frame.
    HRESULT KeyFrame(IZFrame *working, const CHROMA_KEY_RAW &key);
    HRESULT KeyPixels(uint8_t *pixels, int32_t bytes, const Z_VID_PROPS &props, const CHROMA_KEY_RAW &key,
                      const RowSource *rows);
    std::optional<Borders> BordersNow() const;
    static void CutToBorders(const Borders &borders, ComPtr<IZFrame> *working);
    CHROMA_KEY_RAW KeySnapshot() const;
    ComPtr<IZFrame> LastFrame() const;
    HRESULT BackgroundNow(XMLParse::CoXMLNode &options, ComPtr<IZFrame> *background);

    mutable CriticalSection m_lastFrameLock;
    ComPtr<IZFrame> m_lastFrame;
    CSliceThreads m_slices;
    CriticalSection m_keyingLock;
    CriticalSection m_receiveLock;
    ComPtr<IZFrame> m_pendingFrame;
    ComPtr<IZFrame> m_finishedFrame;
    mutable CriticalSection m_keyLock;
    CHROMA_KEY_RAW m_key;
    CK_ADJUST m_adjust;
    CBLOBHolder<CHeapAlloc> m_alpha;
    CWorkerThread m_outputThread;
};

}    // namespace zck
