#pragma once

// Process memory services.

#include <karvelui/Export.h>

namespace KarvelUI {

// Hands the heap's free pages back to the operating system, so that the
// resident size drops after a large picture has been decoded and uploaded.
// Does nothing where the C library offers no such call.
void ReleaseFreeHeapMemory();

}  // namespace KarvelUI
