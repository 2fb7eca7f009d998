// `IZFFrame`: public.
#pragma once

#include "zchromakey/f_frame.h"
