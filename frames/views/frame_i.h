// `IZFrame_I`: public.
#pragma once

#include "zchromakey/frame_i.h"
