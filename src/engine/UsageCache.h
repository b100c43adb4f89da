#pragma once

#include <QVariantList>

namespace pulsebar {

/// The most recent boxed values of one series, oldest first: about one minute of samples.
using UsageCache = QVariantList;

} // namespace pulsebar
