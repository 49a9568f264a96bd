#pragma once

// The sample theme names the viewer's photo view, a host type; these tests
// have no viewer, so an image view under that name stands in for it.

#include <karvelui/UIImageBase.h>

namespace KarvelTest {

class PhotoViewStandIn : public KarvelUI::CUIImageBase {
 public:
  PhotoViewStandIn() { SetTypeName(L"CPhotoView"); }
  static KarvelUI::CUIControl* Create(const KarvelUI::CString& type) {
    return type == L"CPhotoView" ? new PhotoViewStandIn() : nullptr;
  }
};

}  // namespace KarvelTest
