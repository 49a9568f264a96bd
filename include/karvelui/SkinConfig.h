#pragma once

// _SkinConfig: the base of every control's configuration record (colours,
// fonts, images, sizes). The skin manager keeps one prototype per control
// type holding that type's defaults; the record a control draws from is
// the prototype's Clone() with the keys of one css entry read onto it.
//
// Every subclass keeps one contract:
//  - its constructor builds every member and ends with its own Reset(), so
//    a new record holds the type's defaults;
//  - Reset() sets every field to the type's built-in default;
//  - Copy(source) copies the fields from a record of the same class (image
//    members through their own Copy); a null source does nothing; a field
//    deliberately left out is documented with the subclass;
//  - Read(reader) returns 0 for a null reader, else reads its keys (absent
//    keys leave their fields alone) and returns 1;
//  - Clone() returns a new default-constructed record of its own class on
//    which Copy(this) was called; the caller frees it with Release().

#include <memory>

#include <karvelui/Base.h>

namespace KarvelUI {

class CSkinReader;

class KARVELUI_API _SkinConfig {
 public:
  _SkinConfig() = default;
  // There is nothing to copy at this level.
  _SkinConfig(const _SkinConfig&) {}
  _SkinConfig& operator=(const _SkinConfig&) { return *this; }
  virtual ~_SkinConfig() = default;

  // Destroys the record; the one way records handed out are freed.
  virtual void Release() { delete this; }
  virtual void Copy(_SkinConfig* source) = 0;
  virtual void Reset() = 0;
  virtual int Read(CSkinReader* reader) = 0;
  virtual _SkinConfig* Clone() = 0;
};

// Owns a record through Release().
struct SkinConfigReleaser {
  void operator()(_SkinConfig* config) const {
    if (config) config->Release();
  }
};
using SkinConfigPtr = std::unique_ptr<_SkinConfig, SkinConfigReleaser>;

}  // namespace KarvelUI
