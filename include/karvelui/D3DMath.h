#pragma once

// 2-D transforms of the sprite batch and the geometry of one sprite draw,
// shared by every backend so that they place pixels identically.

#include <karvelui/Export.h>
#include <karvelui/D3DTypes.h>

namespace KarvelUI {

KARVELUI_API D3DXMATRIX* D3DXMatrixIdentity(D3DXMATRIX* out);

// The affine 2-D transformation: a point p goes to
//   q = sc + R(sr) S R(-sr) (p - sc)      (scaling about `scalingCenter`,
//                                         along axes turned by `scalingRotation`)
//   q' = rc + R(rotation) (q - rc) + t    (turned about `rotationCenter`)
// Null vectors are the neutral element: centres (0, 0), scaling (1, 1), no
// translation. A positive angle turns clockwise on screen (y grows
// downwards).
KARVELUI_API D3DXMATRIX* D3DXMatrixTransformation2D(D3DXMATRIX* out, const D3DXVECTOR2* scalingCenter,
                                                    float scalingRotation, const D3DXVECTOR2* scaling,
                                                    const D3DXVECTOR2* rotationCenter, float rotation,
                                                    const D3DXVECTOR2* translation);

// p * m for a 2-D point (z = 0, w = 1).
KARVELUI_API D3DXVECTOR2 TransformPoint(const D3DXMATRIX& m, float x, float y);

// Where one sprite draw lands: the texture's `source` rectangle (null: the
// whole texture), with its `center` point (null: the rectangle's top-left)
// placed at `position` (null: the origin), one texel per unit, then the
// sprite transform applied.
struct SpriteQuad {
  D3DXVECTOR2 corners[4];  // top-left, top-right, bottom-left, bottom-right
  float u0 = 0, v0 = 0, u1 = 0, v1 = 0;  // normalised texture coordinates
};
KARVELUI_API SpriteQuad ComputeSpriteQuad(UINT textureWidth, UINT textureHeight, const RECT* source,
                                          const D3DXVECTOR3* center, const D3DXVECTOR3* position,
                                          const D3DXMATRIX& transform);

}  // namespace KarvelUI
