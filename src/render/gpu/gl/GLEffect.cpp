#include "render/gpu/gl/GLEffect.h"

#include <cstring>
#include <sstream>
#include <vector>

#include "render/gpu/gl/GLDevice.h"

namespace KarvelUI::gl {
namespace {

constexpr const char* kMarker = "//!";
constexpr UINT kPassCount = 1;

void Append(std::string* messages, const std::string& text) {
  if (!messages || text.empty()) return;
  if (!messages->empty() && messages->back() != '\n') *messages += '\n';
  *messages += text;
}

// Cuts the source at its marker lines; text before the first marker is the
// file's own commentary and belongs to no stage.
bool SplitSections(const std::string& source, std::string& technique, std::string& vertex, std::string& fragment,
                   std::string* messages) {
  std::istringstream lines(source);
  std::string line;
  std::string* stage = nullptr;
  int number = 0;
  bool ok = true;
  while (std::getline(lines, line)) {
    ++number;
    const size_t start = line.find_first_not_of(" \t");
    if (start == std::string::npos || line.compare(start, std::strlen(kMarker), kMarker) != 0) {
      if (stage) *stage += line + '\n';
      continue;
    }
    std::istringstream words(line.substr(start + std::strlen(kMarker)));
    std::string kind, name;
    words >> kind >> name;
    if (kind == "technique" && !name.empty()) {
      technique = name;
      stage = nullptr;
    } else if (kind == "vertex") {
      stage = &vertex;
    } else if (kind == "fragment") {
      stage = &fragment;
    } else {
      Append(messages, "line " + std::to_string(number) + ": unknown section \"" + kind + "\"");
      ok = false;
    }
  }
  if (technique.empty()) Append(messages, "no \"//! technique NAME\" line");
  if (vertex.empty()) Append(messages, "no vertex stage");
  if (fragment.empty()) Append(messages, "no fragment stage");
  return ok && !technique.empty() && !vertex.empty() && !fragment.empty();
}

std::string InfoLog(GLuint object, bool program) {
  GLint length = 0;
  if (program) {
    glGetProgramiv(object, GL_INFO_LOG_LENGTH, &length);
  } else {
    glGetShaderiv(object, GL_INFO_LOG_LENGTH, &length);
  }
  if (length <= 1) return {};
  std::vector<char> log(static_cast<size_t>(length));
  if (program) {
    glGetProgramInfoLog(object, length, nullptr, log.data());
  } else {
    glGetShaderInfoLog(object, length, nullptr, log.data());
  }
  return std::string(log.data());
}

GLName CompileStage(GLenum type, const char* name, const std::string& text, std::string* messages) {
  GLName shader(GLKind::Shader, glCreateShader(type));
  if (!shader) return {};
  const char* source = text.c_str();
  glShaderSource(shader.Get(), 1, &source, nullptr);
  glCompileShader(shader.Get());
  GLint ok = GL_FALSE;
  glGetShaderiv(shader.Get(), GL_COMPILE_STATUS, &ok);
  const std::string log = InfoLog(shader.Get(), false);
  if (!log.empty()) Append(messages, std::string(name) + " stage: " + log);
  return ok == GL_TRUE ? std::move(shader) : GLName();
}

}  // namespace

HRESULT GLEffect::Create(RefPtr<GLDevice> device, const std::string& source, ID3DXEffect** effect,
                         std::string* messages) {
  Sections sections;
  if (!SplitSections(source, sections.technique, sections.vertex, sections.fragment, messages)) return E_FAIL;
  RefPtr<GLEffect> made = RefPtr<GLEffect>::Adopt(new GLEffect(std::move(device), std::move(sections)));
  if (!made->m_device->MakeContextCurrent()) return D3DERR_DEVICELOST;
  if (!made->Build(messages)) return E_FAIL;
  *effect = made.Detach();
  return S_OK;
}

GLEffect::GLEffect(RefPtr<GLDevice> device, Sections sections)
    : m_device(std::move(device)), m_sections(std::move(sections)) {}

GLEffect::~GLEffect() {
  m_device->EffectPassClosed(this);
  // A program of a replaced context went with it.
  if (m_program && m_generation == m_device->Generation() && m_device->MakeContextCurrent()) {
    m_program.Reset();
  } else {
    m_program.Abandon();
  }
}

bool GLEffect::Build(std::string* messages) {
  m_program.Abandon();  // only called when there is none, or its context is gone
  m_floatLocations.clear();
  GLName vertex = CompileStage(GL_VERTEX_SHADER, "vertex", m_sections.vertex, messages);
  GLName fragment = CompileStage(GL_FRAGMENT_SHADER, "fragment", m_sections.fragment, messages);
  if (!vertex || !fragment) return false;
  GLName linked = GLName::Make(GLKind::Program);
  if (!linked) return false;
  glAttachShader(linked.Get(), vertex.Get());
  glAttachShader(linked.Get(), fragment.Get());
  glLinkProgram(linked.Get());
  GLint ok = GL_FALSE;
  glGetProgramiv(linked.Get(), GL_LINK_STATUS, &ok);
  const std::string log = InfoLog(linked.Get(), true);
  if (!log.empty()) Append(messages, "link: " + log);
  if (ok != GL_TRUE) return false;
  glDetachShader(linked.Get(), vertex.Get());
  glDetachShader(linked.Get(), fragment.Get());

  GLint count = 0;
  glGetProgramiv(linked.Get(), GL_ACTIVE_UNIFORMS, &count);
  glUseProgram(linked.Get());
  for (GLint i = 0; i < count; ++i) {
    char name[256];
    GLint size = 0;
    GLenum type = 0;
    glGetActiveUniform(linked.Get(), static_cast<GLuint>(i), sizeof name, nullptr, &size, &type, name);
    const GLint location = glGetUniformLocation(linked.Get(), name);
    if (type == GL_FLOAT) m_floatLocations[name] = location;
    if (type == GL_SAMPLER_2D) glUniform1i(location, 0);  // every sampler reads stage 0
  }
  m_program = std::move(linked);
  m_generation = m_device->Generation();
  return true;
}

HRESULT GLEffect::SetTechnique(const char* name) {
  return name && m_sections.technique == name ? S_OK : D3DERR_INVALIDCALL;
}

HRESULT GLEffect::SetFloat(const char* name, float value) {
  if (!name || !m_floatLocations.contains(name)) return D3DERR_INVALIDCALL;
  m_floatValues[name] = value;
  return S_OK;
}

HRESULT GLEffect::Begin(UINT* passes, DWORD /*flags*/) {
  if (!passes || m_begun) return D3DERR_INVALIDCALL;
  m_begun = true;
  *passes = kPassCount;
  return S_OK;
}

HRESULT GLEffect::BeginPass(UINT pass) {
  if (!m_begun || m_inPass || pass >= kPassCount) return D3DERR_INVALIDCALL;
  m_inPass = true;
  m_device->EffectPassOpened(this);
  return S_OK;
}

HRESULT GLEffect::EndPass() {
  if (!m_inPass) return D3DERR_INVALIDCALL;
  m_inPass = false;
  m_device->EffectPassClosed(this);
  return S_OK;
}

HRESULT GLEffect::End() {
  if (!m_begun || m_inPass) return D3DERR_INVALIDCALL;
  m_begun = false;
  return S_OK;
}

bool GLEffect::Use() {
  if ((!m_program || m_generation != m_device->Generation()) && !Build(nullptr)) return false;
  glUseProgram(m_program.Get());
  for (const auto& [name, value] : m_floatValues) glUniform1f(m_floatLocations[name], value);
  return true;
}

}  // namespace KarvelUI::gl
