#pragma once

// The operating-system version record that version checks read. Its
// platform id is never VER_PLATFORM_WIN32_NT here, so code that branches on
// "NT 6.x" takes its other path on this system.

#include <cstdint>

#include <karvelui/Export.h>
#include <karvelui/Types.h>

namespace KarvelUI {

inline constexpr DWORD VER_PLATFORM_WIN32_NT = 2;
// The id this platform reports: a POSIX system, deliberately none of the
// ids version checks look for.
inline constexpr DWORD VER_PLATFORM_POSIX = 0x100;
inline constexpr BYTE VER_NT_WORKSTATION = 1;

struct OSVersionInfo {
  DWORD platformId = 0;
  BYTE productType = 0;
  DWORD majorVersion = 0;
  DWORD minorVersion = 0;
};

// The kernel release's first two numbers as major and minor version; false
// when the system does not tell.
bool GetOSVersionInfo(OSVersionInfo& info);

// The machine's physical memory in bytes; 0 when the system does not tell.
std::int64_t GetPhysicalMemoryBytes();

}  // namespace KarvelUI
