#pragma once

#include "controller/BusObject.h"

namespace pulsebar {

class CulpritHistory;

/// The method `culprits` of an interface: who used the processors during the last seconds.
/// @param history must outlive the object that the method is added to
BusMethod culpritsMethod(const QString &interface, const CulpritHistory &history);

} // namespace pulsebar
