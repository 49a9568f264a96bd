#pragma once

// BandedSwirlEffect: the window's picture turned about its centre in bands.
// The effect file "BandedSwirl.fx" (technique "TShader", float parameters
// "Frequency" and "TwistAmount") draws every pixel from the input picture
// at its offset d from the centre turned by
//
//   theta(r) = TwistAmount * (1 - r) * cos(Frequency * r)   for r < 1, else 0
//
// radians, clockwise on screen, where r = |d| / R and R is half the
// picture's shorter side. The centre stays put, the rim (r = 1) and
// everything beyond it too, and between them the cosine makes rings that
// turn one way and the other. TwistAmount 0 shows the input unchanged.
//
// The input picture, captured by Init and stretched over the whole window:
// the picture at SetInputPicture's path (drawn through the device's
// resource cache), or by default the window's current frame (a copy of the
// back buffer as last painted). Without a picture that can be drawn the
// effect samples black.
//
// The effect file is found through SetShaderPath; by default it lies beside
// the program. A file that is missing or does not compile makes Init fail
// with E_FAIL and writes the compiler's messages to the trace log; the
// effect then stays registered but draws nothing.

#include <karvelui/CString.h>
#include <karvelui/Direct3D.h>
#include <karvelui/Export.h>
#include <karvelui/KarvelEffect.h>
#include <karvelui/RefPtr.h>

class KARVELUI_API BandedSwirlEffect : public IKarvelEffect {
 public:
  static constexpr const wchar_t* kName = L"BandedSwirlEffect";  // its name in the manager
  static constexpr float kDefaultFrequency = 50.0f;
  static constexpr float kDefaultTwistAmount = 0.7853981f;  // a quarter turn at most: pi / 4

  BandedSwirlEffect() = default;
  ~BandedSwirlEffect() override = default;
  BandedSwirlEffect(const BandedSwirlEffect&) = default;
  BandedSwirlEffect& operator=(const BandedSwirlEffect&) = default;

  // Registers under kName (releasing what was registered there), compiles
  // the effect file on the device with the default parameters and captures
  // the input picture. 0, or E_FAIL when the effect cannot be made.
  int Init(CEffectsManager* manager, KarvelUI::DXCore* device) override;
  // One frame: the back buffer cleared to 0x00FFFFFF, the input drawn
  // through every pass of the effect, presented; then one more present in
  // every case, also when the frame could not begin. Nothing without a
  // compiled effect. `path` is not used: the input is chosen before Init.
  void ApplyEffect(KarvelUI::CString path) override;
  // Releases the compiled effect and the input picture.
  void Release() override;

  // Sets both parameters for the next frames; E_FAIL without a compiled effect.
  KarvelUI::HRESULT SetSwirl(float frequency, float twistAmount);
  // The picture Init captures as input; empty (the default): the window's
  // current frame.
  void SetInputPicture(const KarvelUI::CString& path) { m_strInputPicture = path; }

  // Where every later Init reads the effect file; empty restores the
  // default, "BandedSwirl.fx" in the program's folder.
  static void SetShaderPath(const KarvelUI::CString& path);
  static KarvelUI::CString GetShaderPath();

 private:
  KarvelUI::HRESULT CaptureInput();

  KarvelUI::RefPtr<KarvelUI::ID3DXEffect> m_pEffect;
  KarvelUI::RefPtr<KarvelUI::IDirect3DTexture9> m_pInput;
  KarvelUI::CString m_strInputPicture;
};
