#pragma once

#include "platform/Notifications.h"

#include <QString>

namespace pulsebar {

struct Alarm;

/// What an alarm says, in the user's language: the alert's name or rule, and below it the value,
/// the threshold, for how long, and who was busiest. Without actions.
Notification alarmNotification(const Alarm &alarm, bool fahrenheit);

/// The key of the graph that shows what was told of, the same that the menu's row has; empty where
/// there is none.
QString alertGraphKey(const Alarm &alarm);

} // namespace pulsebar
