#include "render/gpu/gl/GLObjects.h"

namespace KarvelUI::gl {
namespace {

// Positions are back-buffer pixels with y down; GL's rows run up. Vertex
// colours arrive as BGRA bytes (the D3DCOLOR DWORD in memory).
constexpr const char* kVertexShader = R"(#version 330 core
layout(location = 0) in vec2 aPosition;
layout(location = 1) in vec2 aTexCoord;
layout(location = 2) in vec4 aColor;
uniform vec2 uViewportScale;
out vec2 vTexCoord;
out vec4 vColor;
void main() {
  gl_Position = vec4(aPosition.x * uViewportScale.x - 1.0, 1.0 - aPosition.y * uViewportScale.y, 0.0, 1.0);
  vTexCoord = aTexCoord;
  vColor = aColor;
}
)";

// Texels are premultiplied, so filtering never pulls colour out of
// transparent neighbours; the straight colour multiplies each channel and the
// result leaves premultiplied for (ONE, ONE_MINUS_SRC_ALPHA) blending, which
// equals straight-alpha blending of texel * colour.
constexpr const char* kFragmentShader = R"(#version 330 core
in vec2 vTexCoord;
in vec4 vColor;
uniform sampler2D uTexture;
uniform int uStraightOutput;
out vec4 fragColor;
void main() {
  vec4 texel = texture(uTexture, vTexCoord);
  float alpha = texel.a * vColor.a;
  vec3 rgb = texel.rgb * vColor.rgb;
  if (uStraightOutput != 0) {
    fragColor = vec4(texel.a > 0.0 ? rgb / texel.a : vec3(0.0), alpha);
  } else {
    fragColor = vec4(rgb * vColor.a, alpha);
  }
}
)";

GLName CompileShader(GLenum type, const char* source) {
  GLName shader(GLKind::Shader, glCreateShader(type));
  if (!shader) return {};
  glShaderSource(shader.Get(), 1, &source, nullptr);
  glCompileShader(shader.Get());
  GLint ok = GL_FALSE;
  glGetShaderiv(shader.Get(), GL_COMPILE_STATUS, &ok);
  return ok == GL_TRUE ? std::move(shader) : GLName();
}

}  // namespace

GLName GLName::Make(GLKind kind) {
  GLuint name = 0;
  switch (kind) {
    case GLKind::Texture: glGenTextures(1, &name); break;
    case GLKind::Buffer: glGenBuffers(1, &name); break;
    case GLKind::VertexArray: glGenVertexArrays(1, &name); break;
    case GLKind::Framebuffer: glGenFramebuffers(1, &name); break;
    case GLKind::Renderbuffer: glGenRenderbuffers(1, &name); break;
    case GLKind::Program: name = glCreateProgram(); break;
    case GLKind::Shader: return {};  // made by CompileShader
  }
  return GLName(kind, name);
}

void GLName::Reset() {
  const GLuint name = std::exchange(m_name, 0);
  if (!name) return;
  switch (m_kind) {
    case GLKind::Texture: glDeleteTextures(1, &name); break;
    case GLKind::Buffer: glDeleteBuffers(1, &name); break;
    case GLKind::VertexArray: glDeleteVertexArrays(1, &name); break;
    case GLKind::Framebuffer: glDeleteFramebuffers(1, &name); break;
    case GLKind::Renderbuffer: glDeleteRenderbuffers(1, &name); break;
    case GLKind::Program: glDeleteProgram(name); break;
    case GLKind::Shader: glDeleteShader(name); break;
  }
}

bool SpriteProgram::Build() {
  GLName vertex = CompileShader(GL_VERTEX_SHADER, kVertexShader);
  GLName fragment = CompileShader(GL_FRAGMENT_SHADER, kFragmentShader);
  if (!vertex || !fragment) return false;
  GLName linked = GLName::Make(GLKind::Program);
  if (!linked) return false;
  glAttachShader(linked.Get(), vertex.Get());
  glAttachShader(linked.Get(), fragment.Get());
  glLinkProgram(linked.Get());
  GLint ok = GL_FALSE;
  glGetProgramiv(linked.Get(), GL_LINK_STATUS, &ok);
  if (ok != GL_TRUE) return false;
  glDetachShader(linked.Get(), vertex.Get());
  glDetachShader(linked.Get(), fragment.Get());
  viewportScale = glGetUniformLocation(linked.Get(), "uViewportScale");
  straightOutput = glGetUniformLocation(linked.Get(), "uStraightOutput");
  glUseProgram(linked.Get());
  glUniform1i(glGetUniformLocation(linked.Get(), "uTexture"), 0);
  program = std::move(linked);
  return true;
}

}  // namespace KarvelUI::gl
