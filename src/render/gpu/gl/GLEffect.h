#pragma once

// An effect of the OpenGL backend: one technique whose single pass is a
// GLSL program made of the file's vertex and fragment sections (see
// D3DXCreateEffectFromFileW for the file's layout). The effect keeps its
// source, so that a context replaced after a loss gets the program again on
// the next draw.

#include <cstdint>
#include <map>
#include <string>

#include <karvelui/Direct3D.h>
#include "render/gpu/gl/GLObjects.h"

namespace KarvelUI::gl {

class GLDevice;

class GLEffect final : public RefCounted<ID3DXEffect> {
 public:
  // Splits `source` into its sections and compiles them on the device's
  // context; E_FAIL with the reasons in *messages when that fails.
  static HRESULT Create(RefPtr<GLDevice> device, const std::string& source, ID3DXEffect** effect,
                        std::string* messages);

  HRESULT SetTechnique(const char* name) override;
  HRESULT SetFloat(const char* name, float value) override;
  HRESULT Begin(UINT* passes, DWORD flags) override;
  HRESULT BeginPass(UINT pass) override;
  HRESULT EndPass() override;
  HRESULT End() override;

  // Drawing thread, context current: puts the program in use with every
  // parameter set so far. False when the program cannot be made.
  bool Use();

 private:
  struct Sections {
    std::string technique;
    std::string vertex;
    std::string fragment;
  };

  GLEffect(RefPtr<GLDevice> device, Sections sections);
  ~GLEffect() override;
  // Compiles and links for the current context; the float uniforms become
  // the parameters.
  bool Build(std::string* messages);

  RefPtr<GLDevice> m_device;
  Sections m_sections;
  GLName m_program;
  std::uint64_t m_generation = 0;         // of the context m_program belongs to
  std::map<std::string, GLint> m_floatLocations;
  std::map<std::string, float> m_floatValues;
  bool m_begun = false;
  bool m_inPass = false;
};

}  // namespace KarvelUI::gl
