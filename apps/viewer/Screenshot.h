#pragma once

#include <string>

namespace KarvelUI {
class DXCore;
}

namespace KarvelView {

// Writes what the device's back buffer holds as a PNG file.
bool WriteScreenshot(KarvelUI::DXCore& core, const std::string& path);

}  // namespace KarvelView
