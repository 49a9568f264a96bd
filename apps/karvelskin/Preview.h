#pragma once

// Forms painted off screen the way a host shows them, with sample content.

#include <string>
#include <vector>

#include "Picture.h"
#include <karvelui/Base.h>

namespace KarvelSkin {

struct PreviewOptions {
  int width = 0, height = 0;  // client size; 0: the form's own "PositionRect"
  bool menu = false;          // pop a sample menu over the form
  KarvelUI::CString photo;    // shown in every image view; empty: none
};

// The forms of the loaded build file, in document order.
std::vector<KarvelUI::CString> BuildFormIds();
// Builds form `id` in the current skin, paints it and reads it back; false
// when the form cannot be made.
bool PaintForm(const KarvelUI::CString& id, const PreviewOptions& options, Picture& out);

}  // namespace KarvelSkin
