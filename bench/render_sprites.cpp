// Sprite throughput: the same small textured quads drawn per frame through
// the render device (one vertex buffer per frame, one draw call per texture
// run) and, as the naive baseline, with one GL draw call per quad. Prints
// quads per millisecond of both and their ratio.
//
//   scripts/bench.sh render_sprites [quads per frame]
#define KARVEL_BENCH_OWN_MAIN

#include <epoxy/gl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <utility>
#include <vector>

#include "platform/window/GLSurface.h"
#include "render_support.h"

using namespace KarvelUI;
using namespace KarvelBench;

namespace {

constexpr int kWidth = 1280, kHeight = 800;
constexpr int kAtlas = 64;
int kQuadSize = 8;  // second argument
constexpr double kSecondsPerSide = 1.5;

struct Quad {
  RECT source;
  float x, y;
};

std::vector<Quad> MakeQuads(int count) {
  std::mt19937 random(7);
  std::vector<Quad> quads(count);
  for (Quad& q : quads) {
    const LONG sx = static_cast<LONG>(random() % (kAtlas / kQuadSize)) * kQuadSize;
    const LONG sy = static_cast<LONG>(random() % (kAtlas / kQuadSize)) * kQuadSize;
    q.source = RECT(sx, sy, sx + kQuadSize, sy + kQuadSize);
    q.x = static_cast<float>(random() % (kWidth - kQuadSize));
    q.y = static_cast<float>(random() % (kHeight - kQuadSize));
  }
  return quads;
}

DWORD AtlasTexel(int x, int y) { return 0xFF000000u | (x * 4u) << 16 | (y * 4u) << 8 | 0x80u; }

// Runs frames for a while; returns quads per millisecond.
template <class DrawFrame>
double Measure(int quadsPerFrame, DrawFrame&& drawFrame) {
  for (int i = 0; i < 3; ++i) drawFrame();  // uploads and warm caches
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  int frames = 0;
  double elapsedMs = 0;
  do {
    drawFrame();
    ++frames;
    elapsedMs = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  } while (elapsedMs < kSecondsPerSide * 1000.0);
  std::printf("  %.3f ms per frame over %d frames\n", elapsedMs / frames, frames);
  return static_cast<double>(quadsPerFrame) * frames / elapsedMs;
}

double MeasureDevice(const std::vector<Quad>& quads) {
  BenchWindow window;
  if (!window.Open(kWidth, kHeight)) return 0;
  DXCore& core = window.core;
  RefPtr<IDirect3DTexture9> atlas = MakeTexture(core.GetD3DDevice(), kAtlas, kAtlas, AtlasTexel);
  return Measure(static_cast<int>(quads.size()), [&] {
    core.BeginPaint();
    core.CleanScreen(0xFF000000);
    for (const Quad& q : quads) {
      const D3DXVECTOR3 at{q.x, q.y, 0};
      core.DrawImage(atlas.Get(), &q.source, nullptr, &at, 0xFFFFFFFF);
    }
    core.EndPaint();
    glFinish();  // the device's context is current after the present
  });
}

// The baseline: per quad, bind the texture, write four vertices, draw.
class NaiveRenderer {
 public:
  ~NaiveRenderer() {
    if (!m_surface.MakeCurrent()) return;
    glDeleteTextures(1, &m_texture);
    glDeleteBuffers(1, &m_buffer);
    glDeleteVertexArrays(1, &m_vertexArray);
    glDeleteProgram(m_program);
  }

  bool Init(HWND window) {
    if (m_surface.Create(window) != S_OK) return false;
    m_surface.SetSwapInterval(0);
    const char* vs = "#version 330 core\nlayout(location=0) in vec2 p; layout(location=1) in vec2 t; out vec2 v;"
                     "void main(){ v = t; gl_Position = vec4(p, 0.0, 1.0); }";
    const char* fs = "#version 330 core\nin vec2 v; uniform sampler2D s; uniform vec4 c; out vec4 o;"
                     "void main(){ vec4 x = texture(s, v) * c; o = x; }";
    m_program = glCreateProgram();
    for (auto [type, source] : {std::pair{GL_VERTEX_SHADER, vs}, std::pair{GL_FRAGMENT_SHADER, fs}}) {
      const GLuint shader = glCreateShader(type);
      glShaderSource(shader, 1, &source, nullptr);
      glCompileShader(shader);
      glAttachShader(m_program, shader);
      glDeleteShader(shader);
    }
    glLinkProgram(m_program);
    m_color = glGetUniformLocation(m_program, "c");
    glGenVertexArrays(1, &m_vertexArray);
    glBindVertexArray(m_vertexArray);
    glGenBuffers(1, &m_buffer);
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer);
    glBufferData(GL_ARRAY_BUFFER, 16 * sizeof(float), nullptr, GL_STREAM_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 4 * sizeof(float), nullptr);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 4 * sizeof(float), reinterpret_cast<void*>(2 * sizeof(float)));
    std::vector<DWORD> texels(kAtlas * kAtlas);
    for (int y = 0; y < kAtlas; ++y)
      for (int x = 0; x < kAtlas; ++x) texels[y * kAtlas + x] = AtlasTexel(x, y);
    glGenTextures(1, &m_texture);
    glBindTexture(GL_TEXTURE_2D, m_texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, kAtlas, kAtlas, 0, GL_BGRA, GL_UNSIGNED_BYTE, texels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    return glGetError() == GL_NO_ERROR;
  }

  void Frame(const std::vector<Quad>& quads) {
    m_surface.MakeCurrent();
    glViewport(0, 0, kWidth, kHeight);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glUseProgram(m_program);
    glBindVertexArray(m_vertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer);
    for (const Quad& q : quads) {
      const float x0 = q.x / kWidth * 2 - 1, x1 = (q.x + kQuadSize) / kWidth * 2 - 1;
      const float y0 = 1 - q.y / kHeight * 2, y1 = 1 - (q.y + kQuadSize) / kHeight * 2;
      const float u0 = static_cast<float>(q.source.left) / kAtlas, u1 = static_cast<float>(q.source.right) / kAtlas;
      const float v0 = static_cast<float>(q.source.top) / kAtlas, v1 = static_cast<float>(q.source.bottom) / kAtlas;
      const float vertices[16] = {x0, y0, u0, v0, x1, y0, u1, v0, x0, y1, u0, v1, x1, y1, u1, v1};
      glBindTexture(GL_TEXTURE_2D, m_texture);
      glUniform4f(m_color, 1, 1, 1, 1);
      glBufferSubData(GL_ARRAY_BUFFER, 0, sizeof vertices, vertices);
      glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    }
    m_surface.SwapBuffers();
    glFinish();
  }

 private:
  GLSurface m_surface;
  GLuint m_program = 0, m_vertexArray = 0, m_buffer = 0, m_texture = 0;
  GLint m_color = -1;
};

double MeasureNaive(const std::vector<Quad>& quads) {
  CWnd wnd;
  WNDCLASSW cls;
  cls.lpszClassName = L"KarvelBenchNaive";
  AfxRegisterClass(&cls);
  if (!wnd.CreateEx(0, cls.lpszClassName, L"naive", WS_POPUP, CRect(0, 0, kWidth, kHeight), nullptr, 0)) return 0;
  NaiveRenderer naive;
  if (!naive.Init(wnd.m_hWnd)) return 0;
  return Measure(static_cast<int>(quads.size()), [&] { naive.Frame(quads); });
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20000;
  if (argc > 2) kQuadSize = std::clamp(std::atoi(argv[2]), 1, kAtlas);
  const std::vector<Quad> quads = MakeQuads(count);
  std::printf("sprite throughput: %d quads of %dx%d per frame, %dx%d window\n", count, kQuadSize, kQuadSize, kWidth,
              kHeight);
  std::printf("render device (batched):\n");
  const double batched = MeasureDevice(quads);
  std::printf("one GL draw call per quad:\n");
  const double naive = MeasureNaive(quads);
  if (batched <= 0 || naive <= 0) {
    std::printf("no GL device could be made\n");
    return 1;
  }
  std::printf("batched:  %10.1f quads/ms\nnaive:    %10.1f quads/ms\nratio:    %10.1fx\n", batched, naive,
              batched / naive);
  return 0;
}
