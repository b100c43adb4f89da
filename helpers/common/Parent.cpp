#include "common/Parent.h"

#include <sys/prctl.h>

#include <csignal>
#include <unistd.h>

namespace pulsebar {

bool followParent()
{
    const auto parent = ::getppid();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    return ::getppid() == parent;
}

} // namespace pulsebar
