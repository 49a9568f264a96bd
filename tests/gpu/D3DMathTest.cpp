// The 2-D transformation of the sprite batch and the corners of a draw.

#include <gtest/gtest.h>

#include <cmath>

#include <karvelui/D3DMath.h>

using namespace KarvelUI;

namespace {

void ExpectPoint(const D3DXVECTOR2& p, float x, float y) {
  EXPECT_NEAR(p.x, x, 1e-4f);
  EXPECT_NEAR(p.y, y, 1e-4f);
}

}  // namespace

TEST(D3DMath, TransformationScalesThenTurnsThenTranslates) {
  D3DXMATRIX m;
  const D3DXVECTOR2 scalingCenter{10, 10}, scaling{2, 3}, rotationCenter{0, 0}, translation{5, -5};
  D3DXMatrixTransformation2D(&m, &scalingCenter, 0, &scaling, &rotationCenter, static_cast<float>(M_PI / 2),
                             &translation);
  // (12, 11) -> scaled about (10, 10): (14, 13) -> a quarter turn clockwise
  // about the origin: (-13, 14) -> translated: (-8, 9).
  ExpectPoint(TransformPoint(m, 12, 11), -8, 9);

  // Null arguments are neutral: the identity.
  D3DXMatrixTransformation2D(&m, nullptr, 0, nullptr, nullptr, 0, nullptr);
  EXPECT_EQ(m, D3DXMATRIX());

  // Scaling along axes turned by a quarter swaps the factors.
  const D3DXVECTOR2 wide{2, 1};
  D3DXMatrixTransformation2D(&m, nullptr, static_cast<float>(M_PI / 2), &wide, nullptr, 0, nullptr);
  ExpectPoint(TransformPoint(m, 3, 4), 3, 8);
}

TEST(D3DMath, SpriteQuadPlacesTheCentreAtThePosition) {
  const RECT source(4, 0, 12, 6);
  const D3DXVECTOR3 center{2, 3, 0}, position{100, 50, 0};
  const D3DXVECTOR2 scaling{2, 2}, at{100, 50};
  D3DXMATRIX m;
  D3DXMatrixTransformation2D(&m, &at, 0, &scaling, nullptr, 0, nullptr);
  const SpriteQuad quad = ComputeSpriteQuad(16, 8, &source, &center, &position, m);
  ExpectPoint(quad.corners[0], 96, 44);   // (98, 47) doubled about (100, 50)
  ExpectPoint(quad.corners[3], 112, 56);  // (106, 53)
  EXPECT_EQ((std::vector{quad.u0, quad.u1, quad.v1}), (std::vector{0.25f, 0.75f, 0.75f}));  // exact in binary
}
