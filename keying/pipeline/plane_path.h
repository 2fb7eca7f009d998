// The pipeline as whole-plane stages, in their plain order. Serves every format and every shape; slower than rows.
#pragma once

#include "keying/pipeline/image_view.h"
#include "keying/pipeline/plan.h"

namespace zck {

/// Keys one image, fields already apart. `writeAlpha` as in `CK_GetAlphaKeyEx3`.
HRESULT KeyByPlanes(const KeyView &view, const KeyPlan &plan, bool writeAlpha);

}    // namespace zck
