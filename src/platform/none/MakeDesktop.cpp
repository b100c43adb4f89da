#include "platform/Desktop.h"

namespace pulsebar {

Desktop makeDesktop()
{
    return {};
}

} // namespace pulsebar
