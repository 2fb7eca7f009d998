// A frame that is not the library's, and does what a test wants of it.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "tests/frames/object/foreign_frame.h"

namespace zck::test {

struct OwnFrameState {
    Z_VID_PROPS props = {};
    std::vector<uint8_t> bytes;
    std::optional<int32_t> told;    ///< byte count in place of the true one
    HRESULT cloneStatus = S_OK;
    bool cloneEmpty = false;                             ///< success, and no frame
    std::function<void(OwnFrameState &)> cloneChange;    ///< what a clone is before it is handed out
    std::function<void(eZFrameClone)> onClone;
    std::function<void()> onBytes;
    std::function<void()> onRelease;    ///< runs while the frame dies
    HRESULT convertStatus = E_NOTIMPL;
    HRESULT overlayStatus = E_NOTIMPL;
    std::function<void(const Z_VID_PROPS &)> onConvert;
    std::function<void(OwnFrameState &, IZFrame *over)> onOverlay;
};

/// Clones are frames of the same kind with bytes of their own.
class OwnFrame final : public RefusingQuorvex {
public:
    explicit OwnFrame(OwnFrameState state) : m_state(std::move(state)) {}
    ~OwnFrame() override {
        if (m_state.onRelease) m_state.onRelease();
    }

    static ComPtr<IZFrame> Create(OwnFrameState state) {
        ComPtr<IZFrame> frame;
        CreateObject<OwnFrame>(nullptr, IID_IZFrame, frame.PutVoid(), std::move(state));
        return frame;
    }

    HRESULT Z_STDCALL FrameAVPropsGet(Z_AV_PROPS *props) override {
        *props = {};
        props->vidProps = m_state.props;
        return S_OK;
    }
    HRESULT Z_STDCALL FrameVideoGetBytes(int32_t *size, int64_t *address) override {
        if (m_state.onBytes) m_state.onBytes();
        *size = m_state.told.value_or(static_cast<int32_t>(m_state.bytes.size()));
        *address = ForeignState::Address(m_state.bytes);
        return S_OK;
    }
    HRESULT Z_STDCALL FrameClone(IZFrame **clone, eZFrameClone type, eZFCC) override {
        if (m_state.onClone) m_state.onClone(type);
        if (FAILED(m_state.cloneStatus) || m_state.cloneEmpty) return m_state.cloneStatus;
        OwnFrameState state = m_state;
        state.onRelease = nullptr;
        if (m_state.cloneChange) m_state.cloneChange(state);
        *clone = Create(std::move(state)).Detach();
        return S_OK;
    }
    HRESULT Z_STDCALL FrameConvert(Z_VID_PROPS *wanted, IZFrame **result, BSTR) override {
        if (m_state.onConvert) m_state.onConvert(*wanted);
        if (FAILED(m_state.convertStatus)) return m_state.convertStatus;
        OwnFrameState state = m_state;
        state.props.nWidth = wanted->nWidth;
        state.props.nHeight = wanted->nHeight;
        state.props.nRowBytes = 4 * wanted->nWidth;
        state.bytes.assign(static_cast<size_t>(state.props.nRowBytes) * static_cast<size_t>(std::abs(wanted->nHeight)), 0x77);
        *result = Create(std::move(state)).Detach();
        return S_OK;
    }
    HRESULT Z_STDCALL FrameOverlay(IZFrame *over, int32_t, int32_t, double, BSTR) override {
        if (m_state.onOverlay) m_state.onOverlay(m_state, over);
        return m_state.overlayStatus;
    }

private:
    OwnFrameState m_state;
};

}    // namespace zck::test
