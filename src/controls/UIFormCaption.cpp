// The form's dealings with its caption. They live here, with the caption,
// rather than with the rest of CUIForm: they need the caption's type, and
// the controls layer sits above the form's.

#include <karvelui/UICaption.h>
#include <karvelui/UIForm.h>

namespace KarvelUI {

CUICaption* CUIForm::GetFormCaption() {
  for (INT_PTR i = 0; i < GetChildCount(); ++i) {
    CUIControl* child = GetChild(i);
    if (child && child->GetObjectID().CompareNoCase(L"FormCaption") == 0) return dynamic_cast<CUICaption*>(child);
  }
  return nullptr;
}

int CUIForm::HitFormCaption(const CPoint& point) {
  CUICaption* caption = GetFormCaption();
  return caption ? caption->IsHitCaption(point) : CAPTION_HIT_NONE;
}

void CUIForm::SizeFormCaption(UINT type) {
  if (CUICaption* caption = GetFormCaption()) caption->OnSize(type);
}

}  // namespace KarvelUI
