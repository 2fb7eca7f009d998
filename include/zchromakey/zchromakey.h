// Everything that a host of the keyer needs.
#pragma once

#include "zchromakey/com.h"
#include "zchromakey/f_frame.h"
#include "zchromakey/frame.h"
#include "zchromakey/frame_i.h"
#include "zchromakey/frame_info.h"
#include "zchromakey/frames.h"
#include "zchromakey/holders.h"
#include "zchromakey/key.h"
#include "zchromakey/key_types.h"
#include "zchromakey/media_types.h"
#include "zchromakey/module.h"
#include "zchromakey/persist.h"
#include "zchromakey/plugin.h"
#include "zchromakey/properties.h"
#include "zchromakey/props.h"
#include "zchromakey/statuses.h"
