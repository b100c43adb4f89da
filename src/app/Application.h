#pragma once

namespace pulsebar {

/// Puts the program together and runs it. The only place where concrete classes of the platform
/// and of the desktop meet.
/// @return the exit status
int runApplication(int argc, char *argv[]);

} // namespace pulsebar
