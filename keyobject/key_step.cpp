#include "keyobject/key_step.h"

#include <algorithm>

#include "keyobject/key_adjust.h"

namespace zck {
namespace {

constexpr double kByte = 255.0;

/// The byte of a key word that channel `i` of a range stands for.
uint32_t ShiftOf(eCK_Type type, uint32_t i) {
    constexpr uint32_t kReversed[4] = {2, 1, 0, 3};
    return 8 * (type == eCKT_RGB ? i : kReversed[i]);
}

void Unpack(int32_t word, eCK_Type type, double (&channels)[4]) {
    for (uint32_t i = 0; i < 4; ++i) channels[i] = (static_cast<uint32_t>(word) >> ShiftOf(type, i) & 0xFF) / kByte;
}

// The low 8 bits: a half-width that has grown past 255 starts again at 0.
int32_t Pack(const double (&channels)[4], eCK_Type type) {
    uint32_t word = 0;
    for (uint32_t i = 0; i < 4; ++i)
        word |= (static_cast<uint32_t>(AdjustRounded(channels[i] * kByte)) & 0xFF) << ShiftOf(type, i);
    return static_cast<int32_t>(word);
}

void LoadSet(KeyRangeSet &set, const CHROMA_KEY_RAW &key, bool exclude) {
    set.count = KeysUsed(key);
    for (int32_t i = 0; i < set.count; ++i) {
        const SINGLE_KEY &entry = key.arrKeys[i];
        if ((entry.nReverseKey >= 1) != exclude) continue;
        Unpack(entry.nValue, key.eType, set.ranges[i].centre);
        Unpack(entry.nDelta, key.eType, set.ranges[i].delta);
    }
}

void Append(CHROMA_KEY_RAW &key, const KeyRangeSet &set, int32_t reverse) {
    for (int32_t i = 0; i < set.count && i + key.nKeysUsed < kKeysMax; ++i) {
        SINGLE_KEY &entry = key.arrKeys[key.nKeysUsed + i];
        entry.nValue = Pack(set.ranges[i].centre, key.eType);
        entry.nDelta = Pack(set.ranges[i].delta, key.eType);
        entry.nReverseKey = reverse;
    }
    key.nKeysUsed = std::min(key.nKeysUsed + set.count, kKeysMax);
}

eCK_Type TypeOf(KeySpace space) {
    if (space == KeySpace::Hls) return eCKT_HLS;
    return space == KeySpace::Yuv ? eCKT_YUV : eCKT_RGB;
}

}    // namespace

void StepLoadRanges(KeyStep &step) {
    LoadSet(step.addRanges, step.key, false);
    LoadSet(step.excludeRanges, step.key, true);
}

void StepRebuild(KeyStep &step) {
    step.key.nKeysUsed = 0;
    Append(step.key, step.addRanges, 0);
    Append(step.key, step.excludeRanges, 1);
    // Half-widths carry no widening here, and are narrowed all the same: a small one becomes the widening itself.
    AdjustRemove(step.key, step.adjust);
    AdjustApply(step.key, step.adjust);
}

void StepRebuild(KeyStep &step, KeySpace space) {
    step.key.eType = TypeOf(space);
    StepRebuild(step);
}

void KeyHistory::Save(const KeyStep &present) {
    if (m_position < 0) {
        m_steps.push_back(present);
        if (m_steps.size() > kLimit) m_steps.pop_front();
        return;
    }
    // The entry at the position goes, so its room is there for the present state.
    m_steps[static_cast<size_t>(m_position)] = present;
    m_steps.erase(m_steps.begin() + m_position + 1, m_steps.end());
    m_position = -1;
}

const KeyStep *KeyHistory::Back() {
    if (m_steps.empty()) return nullptr;
    return MoveTo((m_position < 0 ? static_cast<int32_t>(m_steps.size()) - 1 : m_position) - 1);
}

const KeyStep *KeyHistory::Forward() { return m_position < 0 ? nullptr : MoveTo(m_position + 1); }

const KeyStep *KeyHistory::MoveTo(int32_t position) {
    m_position = std::clamp(position, 0, static_cast<int32_t>(m_steps.size()) - 1);
    return &m_steps[static_cast<size_t>(m_position)];
}

}    // namespace zck
