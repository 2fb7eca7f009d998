// Long sequences of an operator's edits, each followed by a look at everything that can be seen of the key object.
#include "tests/conformance/both_levels.h"
#include "tests/conformance/key_sequences.h"

namespace conformance {
namespace {

// More edits than the history keeps, and the way back through all that it has kept.
TEST_F(KeySequences, TheHistoryIsFull) {
    Start(1);
    const ComPtr<IZFrame> reference = Scene(8, 6);
    ASSERT_EQ(m_key->KeyFrameSet(reference.get(), nullptr), S_OK);
    ASSERT_EQ(m_model->FrameSet(reference.get(), nullptr), S_OK);
    for (int32_t i = 0; i < 530; ++i) {
        ComPtr<IUnknown> out;
        ASSERT_EQ(m_key->KeyAdjustSet(eCKA_Power, i / 1000.0, out.Put()), S_OK);
        m_model->AdjustSet(eCKA_Power, i / 1000.0);
    }
    ASSERT_EQ(m_model->HistorySize(), 512U);
    ASSERT_NO_FATAL_FAILURE(WalkBack());
    for (int32_t i = 0; i < 520; ++i) {
        ComPtr<IUnknown> out;
        ASSERT_EQ(m_key->KeyStepFwd(1, out.Put()), m_model->Forward().hr);
        ASSERT_NO_FATAL_FAILURE(Look()) << "forward, " << i;
    }
}

TEST_F(KeySequences, EveryLookAfterEveryEdit) {
    BothLevels([this] {
        for (uint32_t seed = 7000; seed < 7150; ++seed) {
            Start(seed);
            m_reference.Reset();
            m_width = m_height = 0;
            Settings();
            if (Roll(0, 9) != 0) SetFrames();
            for (int step = 0; step < 60; ++step) {
                ASSERT_NO_FATAL_FAILURE(Step()) << "seed " << seed << " step " << step << "\n" << m_log.text();
                ASSERT_FALSE(HasFailure()) << "seed " << seed << " step " << step << "\n" << m_log.text();
                ASSERT_NO_FATAL_FAILURE(Look()) << "seed " << seed << " step " << step << "\n" << m_log.text();
            }
            ASSERT_NO_FATAL_FAILURE(WalkBack()) << "seed " << seed << "\n" << m_log.text();
        }
    });
}

}    // namespace
}    // namespace conformance
