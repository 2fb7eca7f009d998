// A saved key, worked out the slow way.
#pragma once

#include <string>

#include "tests/conformance/xml_model.h"
#include "zchromakey/key_types.h"

namespace conformance {

CHROMA_KEY_RAW NoiseKey(std::mt19937 &random);
CK_ADJUST NoiseAdjust(std::mt19937 &random);
CK_ADJUST ModelAdjustDefaults();
CK_ADJUST ModelAdjustFromRaw(const CHROMA_KEY_RAW &raw);

std::string ModelKeyText(const CHROMA_KEY_RAW &raw, const CK_ADJUST &adjust);
CHROMA_KEY_RAW ModelKeyFromTree(ModelNode &root);
void ModelAdjustFromTree(ModelNode &root, CK_ADJUST &adjust);

bool Same(const CHROMA_KEY_RAW &a, const CHROMA_KEY_RAW &b);
bool Same(const CK_ADJUST &a, const CK_ADJUST &b);

// What an editor may leave of a saved key.
std::string EditedKeyText(std::mt19937 &random);

}    // namespace conformance
