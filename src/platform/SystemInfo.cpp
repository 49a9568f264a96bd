#include "platform/SystemInfo.h"

#include <unistd.h>

#include <sys/utsname.h>

#include <cstdio>

namespace KarvelUI {

bool GetOSVersionInfo(OSVersionInfo& info) {
  utsname name{};
  if (uname(&name) != 0) return false;
  unsigned major = 0;
  unsigned minor = 0;
  if (std::sscanf(name.release, "%u.%u", &major, &minor) < 1) return false;
  info.platformId = VER_PLATFORM_POSIX;
  info.productType = VER_NT_WORKSTATION;
  info.majorVersion = major;
  info.minorVersion = minor;
  return true;
}

std::int64_t GetPhysicalMemoryBytes() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGE_SIZE);
  return pages > 0 && pageSize > 0 ? std::int64_t{pages} * pageSize : 0;
}

}  // namespace KarvelUI
