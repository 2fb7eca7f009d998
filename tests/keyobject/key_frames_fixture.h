// Key objects whose frames are looked at.
#pragma once

#include "tests/keyobject/key_fixture.h"
#include "tests/keyobject/own_frame.h"

namespace zck::test {

class KeyFramesTest : public KeyTest {
protected:
    /// A frame of the test's own with a green left half.
    static OwnFrameState Own(int width = 32, int height = 16) {
        OwnFrameState state;
        state.props = PropsOf(width, height);
        state.bytes = BytesOf(width, height, HalfGreen);
        return state;
    }
    HRESULT SetOwn(OwnFrameState state) { return m_key->KeyFrameSet(OwnFrame::Create(std::move(state)).get(), nullptr); }
    HRESULT Preview() { return m_key->KeyFrameGet(m_out.Put(), nullptr); }
};

}    // namespace zck::test
