#include "platform/none/NonePlatform.h"

namespace pulsebar {

std::unique_ptr<Platform> makePlatform()
{
    return makeNonePlatform();
}

} // namespace pulsebar
