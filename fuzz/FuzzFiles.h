#pragma once

// Scratch files for fuzz targets whose parser only reads files: one private
// folder per process, removed at exit.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace fuzzing {

const std::filesystem::path& ScratchFolder();
// Writes the bytes to `name` in the scratch folder (replacing it); its path.
std::filesystem::path WriteScratchFile(const std::string& name, const std::uint8_t* data, std::size_t size);

}  // namespace fuzzing
