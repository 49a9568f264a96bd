#include "ThumbTestSupport.h"

#include <gsf/gsf.h>

namespace KarvelTest {

std::filesystem::path ThumbsDbData() {
  for (const char* relative : {"/../shared/testdata/thumbsdb", "/../../shared/testdata/thumbsdb"}) {
    const std::filesystem::path folder = std::filesystem::path(KARVEL_SOURCE_DIR + std::string(relative));
    if (std::filesystem::exists(folder / "FOOGS-Thumbs.db")) return folder.lexically_normal();
  }
  return {};
}

Streams ReadStreams(const std::string& compoundFile) {
  Streams streams;
  GsfInput* input = gsf_input_memory_new(reinterpret_cast<const guint8*>(compoundFile.data()),
                                         static_cast<gsf_off_t>(compoundFile.size()), FALSE);
  GsfInfile* root = gsf_infile_msole_new(input, nullptr);
  g_object_unref(input);
  if (!root) return streams;
  for (int i = 0; i < gsf_infile_num_children(root); ++i) {
    GsfInput* child = gsf_infile_child_by_index(root, i);
    std::string bytes(static_cast<size_t>(gsf_input_size(child)), '\0');
    if (!bytes.empty()) gsf_input_read(child, bytes.size(), reinterpret_cast<guint8*>(bytes.data()));
    streams.emplace_back(gsf_infile_name_by_index(root, i), std::move(bytes));
    g_object_unref(child);
  }
  g_object_unref(root);
  return streams;
}

std::string WriteCompound(const Streams& streams) {
  GsfOutput* sink = gsf_output_memory_new();
  GsfOutfile* root = gsf_outfile_msole_new(sink);
  for (const auto& [name, bytes] : streams) {
    GsfOutput* child = gsf_outfile_new_child(root, name.c_str(), FALSE);
    gsf_output_write(child, bytes.size(), reinterpret_cast<const guint8*>(bytes.data()));
    gsf_output_close(child);
    g_object_unref(child);
  }
  gsf_output_close(GSF_OUTPUT(root));
  g_object_unref(root);
  const auto* data = reinterpret_cast<const char*>(gsf_output_memory_get_bytes(GSF_OUTPUT_MEMORY(sink)));
  std::string file(data, static_cast<size_t>(gsf_output_size(sink)));
  g_object_unref(sink);
  return file;
}

std::string& StreamBytes(Streams& streams, const std::string& name) {
  for (auto& [streamName, bytes] : streams)
    if (streamName == name) return bytes;
  throw std::runtime_error("no stream " + name);
}

}  // namespace KarvelTest
