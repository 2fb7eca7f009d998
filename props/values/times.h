// A date and time as text.
#pragma once

#include "platform/text.h"

namespace zck {

/// The day of the week is never written, and reads as 0. A year of 0 means that there is no date.
struct TimeFields {
    uint16_t year = 0;
    uint16_t month = 0;
    uint16_t dayOfWeek = 0;
    uint16_t day = 0;
    uint16_t hour = 0;
    uint16_t minute = 0;
    uint16_t second = 0;
    uint16_t millisecond = 0;
};

/// "2015-05-07 11:53:49.120": without the date when there is none or `timeOnly` is set, without milliseconds when they are 0.
Text TimeToText(const TimeFields &time, bool timeOnly);
/// The same into a buffer of at least 64 characters. Gives the buffer, null for null.
OLECHAR *TimeToText(const TimeFields &time, OLECHAR *buffer, bool timeOnly);

/// The time is read from the end of the text backwards, up to the first white space; what stands before is tried as a date:
/// "2015-05-07", "07/05/2015", "07.05.2015". Two fields mean hours and minutes, one field minutes. Milliseconds may round up
/// to 1000. The text is read backwards once and tried once for each form of the date, however long it is.
TimeFields TimeFromText(TextView text, bool timeOnly) noexcept;

}    // namespace zck
