#include <karvelui/D3DMath.h>

#include <cmath>

namespace KarvelUI {
namespace {

// x' = a*x + c*y + tx, y' = b*x + d*y + ty (the matrix rows (a b), (c d), (tx ty)).
struct Affine {
  float a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

  static Affine Translate(float x, float y) { return {1, 0, 0, 1, x, y}; }
  static Affine Scale(float sx, float sy) { return {sx, 0, 0, sy, 0, 0}; }
  static Affine Rotate(float angle) {
    const float cs = std::cos(angle), sn = std::sin(angle);
    return {cs, sn, -sn, cs, 0, 0};
  }
  // First this, then next.
  Affine Then(const Affine& n) const {
    return {a * n.a + b * n.c,           a * n.b + b * n.d,
            c * n.a + d * n.c,           c * n.b + d * n.d,
            tx * n.a + ty * n.c + n.tx,  tx * n.b + ty * n.d + n.ty};
  }
  D3DXMATRIX ToMatrix() const {
    D3DXMATRIX m;
    m.m[0][0] = a, m.m[0][1] = b;
    m.m[1][0] = c, m.m[1][1] = d;
    m.m[3][0] = tx, m.m[3][1] = ty;
    return m;
  }
};

}  // namespace

D3DXMATRIX* D3DXMatrixIdentity(D3DXMATRIX* out) {
  if (out) *out = D3DXMATRIX();
  return out;
}

D3DXMATRIX* D3DXMatrixTransformation2D(D3DXMATRIX* out, const D3DXVECTOR2* scalingCenter,
                                       float scalingRotation, const D3DXVECTOR2* scaling,
                                       const D3DXVECTOR2* rotationCenter, float rotation,
                                       const D3DXVECTOR2* translation) {
  if (!out) return out;
  const D3DXVECTOR2 sc = scalingCenter ? *scalingCenter : D3DXVECTOR2{};
  const D3DXVECTOR2 s = scaling ? *scaling : D3DXVECTOR2{1.0f, 1.0f};
  const D3DXVECTOR2 rc = rotationCenter ? *rotationCenter : D3DXVECTOR2{};
  const D3DXVECTOR2 t = translation ? *translation : D3DXVECTOR2{};
  const Affine m = Affine::Translate(-sc.x, -sc.y)
                       .Then(Affine::Rotate(-scalingRotation))
                       .Then(Affine::Scale(s.x, s.y))
                       .Then(Affine::Rotate(scalingRotation))
                       .Then(Affine::Translate(sc.x, sc.y))
                       .Then(Affine::Translate(-rc.x, -rc.y))
                       .Then(Affine::Rotate(rotation))
                       .Then(Affine::Translate(rc.x + t.x, rc.y + t.y));
  *out = m.ToMatrix();
  return out;
}

D3DXVECTOR2 TransformPoint(const D3DXMATRIX& m, float x, float y) {
  return {x * m.m[0][0] + y * m.m[1][0] + m.m[3][0], x * m.m[0][1] + y * m.m[1][1] + m.m[3][1]};
}

SpriteQuad ComputeSpriteQuad(UINT textureWidth, UINT textureHeight, const RECT* source,
                             const D3DXVECTOR3* center, const D3DXVECTOR3* position,
                             const D3DXMATRIX& transform) {
  const RECT src = source ? *source
                          : RECT(0, 0, static_cast<LONG>(textureWidth), static_cast<LONG>(textureHeight));
  const float x0 = (position ? position->x : 0.0f) - (center ? center->x : 0.0f);
  const float y0 = (position ? position->y : 0.0f) - (center ? center->y : 0.0f);
  const float x1 = x0 + static_cast<float>(src.Width());
  const float y1 = y0 + static_cast<float>(src.Height());
  SpriteQuad quad;
  quad.corners[0] = TransformPoint(transform, x0, y0);
  quad.corners[1] = TransformPoint(transform, x1, y0);
  quad.corners[2] = TransformPoint(transform, x0, y1);
  quad.corners[3] = TransformPoint(transform, x1, y1);
  const float w = textureWidth ? static_cast<float>(textureWidth) : 1.0f;
  const float h = textureHeight ? static_cast<float>(textureHeight) : 1.0f;
  quad.u0 = static_cast<float>(src.left) / w;
  quad.v0 = static_cast<float>(src.top) / h;
  quad.u1 = static_cast<float>(src.right) / w;
  quad.v1 = static_cast<float>(src.bottom) / h;
  return quad;
}

}  // namespace KarvelUI
