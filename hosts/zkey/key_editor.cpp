#include "hosts/zkey/key_editor.h"

#include <algorithm>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

constexpr int32_t kMostSteps = 512;

}    // namespace

KeyEditor::KeyEditor(Keyer &keyer, IZFrame *reference) : m_key(keyer.KeyObject(reference)) {}

EditResult KeyEditor::Detect(const std::string &options) {
    EditResult r;
    r.status = m_key->KeyDetect(Counted(options).get(), r.picture.Put());
    return Edited(std::move(r));
}

EditResult KeyEditor::Add(int32_t x, int32_t y, const std::string &options) {
    EditResult r;
    r.status = m_key->KeyAddPoint(x, y, Counted(options).get(), r.picture.Put());
    return Edited(std::move(r));
}

EditResult KeyEditor::Exclude(int32_t x, int32_t y, const std::string &options) {
    EditResult r;
    r.status = m_key->KeyExcludePoint(x, y, Counted(options).get(), r.picture.Put());
    return Edited(std::move(r));
}

EditResult KeyEditor::AddRect(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    EditResult r;
    r.status = m_key->KeyAddRect(left, top, right, bottom, nullptr, r.picture.Put());
    return r;
}

EditResult KeyEditor::Adjust(eCK_Adjust what, double value) {
    EditResult r;
    r.status = m_key->KeyAdjustSet(what, value, r.picture.Put());
    return Edited(std::move(r));
}

EditResult KeyEditor::Back() {
    EditResult r;
    r.status = m_key->KeyStepBack(1, r.picture.Put());
    m_position = std::max((m_position < 0 ? m_size - 1 : m_position) - 1, 0);
    return r;
}

EditResult KeyEditor::Forward() {
    EditResult r;
    r.status = m_key->KeyStepFwd(1, r.picture.Put());
    if (m_position >= 0) m_position = std::min(m_position + 1, m_size - 1);
    return r;
}

EditResult KeyEditor::Reset() {
    EditResult r;
    r.status = m_key->KeyReset(r.picture.Put());
    return Edited(std::move(r));
}

EditResult KeyEditor::Preview() {
    EditResult r;
    r.status = m_key->KeyFrameGet(r.picture.Put(), nullptr);
    return r;
}

EditResult KeyEditor::Edited(EditResult result) {
    if (m_position >= 0) m_size = m_position;
    m_size = std::min(m_size + 1, kMostSteps);
    m_position = -1;
    return result;
}

CHROMA_KEY_RAW KeyEditor::Key() const {
    CHROMA_KEY_RAW key{};
    if (FAILED(m_key->KeyRawGet(&key, nullptr))) Fail("cannot read the key");
    return key;
}

double KeyEditor::Adjustment(eCK_Adjust what) const {
    double value = 0;
    if (FAILED(m_key->KeyAdjustGet(what, &value))) Fail("cannot read the adjustment");
    return value;
}

}    // namespace zkey
