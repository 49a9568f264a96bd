#pragma once

// Procedural stand-ins for photographs, for demos and tests of the viewer:
// scenes of gradients and simple shapes, chosen to look like pictures at a
// glance and to compress small.

#include <vector>

#include "Canvas.h"

namespace skingen {

enum class LandscapeLight { Day, Evening };

// Sky, sun, hills, a lake and a meadow with a few trees.
Canvas DrawLandscape(int width, int height, LandscapeLight light);
// A wide mountain range with snow on the peaks.
Canvas DrawPanorama(int width, int height);
// A striped lighthouse on a rock at dusk (portrait orientation).
Canvas DrawLighthouse(int width, int height);
// Colour patches, a grey ramp and a checkerboard on a dark card.
Canvas DrawColourChart(int width, int height);
// Translucent bubbles on a transparent background.
Canvas DrawBubbles(int width, int height);
// A ring of dots whose bright dot moves one step per frame.
std::vector<Canvas> DrawSpinnerFrames(int size, int frames);

}  // namespace skingen
