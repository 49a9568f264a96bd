// BandedSwirl.fx: the banded swirl, in GLSL 3.30 for the OpenGL backend.
//
// Every pixel shows the input picture at its offset d from the centre
// turned by
//
//   theta(r) = TwistAmount * (1 - r) * cos(Frequency * r)   for r < 1, else 0
//
// radians, clockwise on screen, where r = |d| / R and R is half the
// picture's shorter side (d in pixels, so circles stay round in any
// window). The centre and everything from the rim outwards stay put; in
// between, the cosine lays rings that turn one way and the other, about
// Frequency / (2 pi) pairs of them. TwistAmount 0 leaves the picture as it is.
//
// Sections begin at "//! technique NAME", "//! vertex" and "//! fragment".
// Parameters: the float uniforms "Frequency" and "TwistAmount". The
// sampler reads texture stage 0.

//! technique TShader

//! vertex
#version 330 core
layout(location = 0) in vec3 aPosition;
layout(location = 1) in vec2 aTexCoord;
out vec2 vTexCoord;

void main() {
  gl_Position = vec4(aPosition, 1.0);
  vTexCoord = aTexCoord;
}

//! fragment
#version 330 core
uniform sampler2D Picture;
uniform float Frequency;
uniform float TwistAmount;
in vec2 vTexCoord;
out vec4 fragColor;

void main() {
  vec2 size = vec2(textureSize(Picture, 0));
  vec2 d = (vTexCoord - 0.5) * size;  // pixels from the centre, y down
  float r = length(d) / (0.5 * min(size.x, size.y));
  float theta = r < 1.0 ? TwistAmount * (1.0 - r) * cos(Frequency * r) : 0.0;
  float c = cos(theta);
  float s = sin(theta);
  vec2 turned = vec2(c * d.x - s * d.y, s * d.x + c * d.y);  // clockwise, as y runs down
  fragColor = texture(Picture, 0.5 + turned / size);
}
