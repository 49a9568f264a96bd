#pragma once

// Writing canvases to picture files through FreeImage. Each function
// returns false (and says why on stderr) when the file could not be written.

#include <filesystem>
#include <vector>

#include "Canvas.h"

namespace skingen {

// 32-bit PNG with the canvas's alpha.
bool SavePng(const Canvas& canvas, const std::filesystem::path& file);
// 24-bit baseline JPEG; the canvas should be opaque (alpha is dropped).
bool SaveJpeg(const Canvas& canvas, const std::filesystem::path& file, int quality);
// Looping animated GIF, every frame shown for frameMs; frames share the
// first frame's size. Each frame gets its own 256-colour palette.
bool SaveAnimatedGif(const std::vector<Canvas>& frames, const std::filesystem::path& file, int frameMs);

}  // namespace skingen
