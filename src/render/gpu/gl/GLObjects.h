#pragma once

// RAII for OpenGL object names, and the program of the sprite batch. Every
// object must be destroyed with its context current; when the context is
// already gone, Abandon() forgets the name instead (the context took it).

#include <epoxy/gl.h>

#include <utility>

namespace KarvelUI::gl {

enum class GLKind { Texture, Buffer, VertexArray, Framebuffer, Renderbuffer, Program, Shader };

class GLName {
 public:
  GLName() = default;
  GLName(GLKind kind, GLuint name) : m_kind(kind), m_name(name) {}
  GLName(GLName&& o) noexcept : m_kind(o.m_kind), m_name(std::exchange(o.m_name, 0)) {}
  GLName& operator=(GLName&& o) noexcept {
    if (this != &o) {
      Reset();
      m_kind = o.m_kind;
      m_name = std::exchange(o.m_name, 0);
    }
    return *this;
  }
  GLName(const GLName&) = delete;
  GLName& operator=(const GLName&) = delete;
  ~GLName() { Reset(); }

  static GLName Make(GLKind kind);
  GLuint Get() const { return m_name; }
  explicit operator bool() const { return m_name != 0; }
  void Reset();
  void Abandon() { m_name = 0; }

 private:
  GLKind m_kind = GLKind::Texture;
  GLuint m_name = 0;
};

// The one program of the sprite batch: positions in back-buffer pixels,
// texels premultiplied by their alpha, a straight-alpha vertex colour.
struct SpriteProgram {
  GLName program;
  GLint viewportScale = -1;  // vec2: 2 / back-buffer size
  GLint straightOutput = -1; // int: 1 when blending is off

  bool Build();
};

}  // namespace KarvelUI::gl
