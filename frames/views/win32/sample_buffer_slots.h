// The system's own sample buffer interfaces.
#pragma once

#include "zchromakey/com.h"
// Needs the object model's names, so it comes last.
#include <wmsbuffer.h>
