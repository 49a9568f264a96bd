#include "thumbnails/ThumbDB.h"

#include <gsf/gsf.h>

#include <cstring>
#include <iostream>
#include <mutex>

#include <karvelui/TextCodec.h>
#include <karvelui/Trace.h>
#include "platform/Paths.h"

namespace KarvelUI {
namespace {

constexpr BYTE kCompoundSignature[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr std::uint64_t kCatalogHeaderBytes = 16;
constexpr int kStreamNameCapacity = 260;        // characters, as the name buffer holds

void InitGsfOnce() {
  static std::once_flag once;
  std::call_once(once, [] { gsf_init(); });
}

// The first eight bytes carry the compound file signature; the input is left
// at its start.
bool HasCompoundSignature(GsfInput* input) {
  BYTE signature[sizeof kCompoundSignature];
  const bool read = gsf_input_read(input, sizeof signature, signature) != nullptr;
  gsf_input_seek(input, 0, G_SEEK_SET);
  return read && std::memcmp(signature, kCompoundSignature, sizeof signature) == 0;
}

std::uint32_t ReadLE32At(GsfInput* input, gsf_off_t at, bool& ok) {
  BYTE bytes[4] = {};
  ok = ok && gsf_input_seek(input, at, G_SEEK_SET) == FALSE && gsf_input_read(input, sizeof bytes, bytes) != nullptr;
  return static_cast<std::uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16) | static_cast<std::uint32_t>(bytes[3]) << 24;
}

// The root entry of the directory has no siblings. The compound file reader
// allocates entries it finds beside the root and never frees them, so such a
// file is refused before it sees it.
bool RootHasNoSiblings(GsfInput* input) {
  constexpr gsf_off_t kSectorShiftAt = 0x1E, kDirectoryStartAt = 0x30;
  constexpr gsf_off_t kLeftSiblingAt = 0x44, kRightSiblingAt = 0x48;
  constexpr std::uint32_t kNoStream = 0xFFFFFFFF;
  bool ok = true;
  const std::uint32_t shift = ReadLE32At(input, kSectorShiftAt, ok) & 0xFFFF;
  const std::uint32_t start = ReadLE32At(input, kDirectoryStartAt, ok);
  if (!ok || shift < 7 || shift > 16 || start >= 0xFFFFFFFA) return false;
  const gsf_off_t root = (static_cast<gsf_off_t>(start) + 1) << shift;
  const bool alone = ReadLE32At(input, root + kLeftSiblingAt, ok) == kNoStream &&
                     ReadLE32At(input, root + kRightSiblingAt, ok) == kNoStream;
  gsf_input_seek(input, 0, G_SEEK_SET);
  return ok && alone;
}

// Little-endian reads from the catalog's bytes, bounds-checked.
class CatalogReader {
 public:
  explicit CatalogReader(const std::vector<BYTE>& bytes) : m_bytes(bytes) {}

  bool Read16(WORD& value) {
    if (Left() < 2) return false;
    value = static_cast<WORD>(m_bytes[m_at] | m_bytes[m_at + 1] << 8);
    m_at += 2;
    return true;
  }
  bool Read32(DWORD& value) {
    WORD low = 0, high = 0;
    if (Left() < 4 || !Read16(low) || !Read16(high)) return false;
    value = static_cast<DWORD>(low) | static_cast<DWORD>(high) << 16;
    return true;
  }
  std::uint64_t Position() const { return m_at; }

 private:
  std::uint64_t Left() const { return m_bytes.size() - m_at; }

  const std::vector<BYTE>& m_bytes;
  std::uint64_t m_at = 0;
};

// One entry; false when the catalog is damaged at this entry.
bool ReadEntry(CatalogReader& reader, ThumbDBEntry& entry) {
  const std::uint64_t start = reader.Position();
  if (!reader.Read32(entry.nRecordLength) || !reader.Read32(entry.nIndex) || !reader.Read32(entry.nTimeLow) ||
      !reader.Read32(entry.nTimeHigh))
    return false;
  std::u16string name;
  for (WORD unit = 0;;) {
    if (!reader.Read16(unit)) return false;
    if (unit == 0) break;
    if (name.size() == static_cast<size_t>(kMaxNameLength)) return false;
    name.push_back(static_cast<char16_t>(unit));
  }
  if (!reader.Read16(entry.nTrailer)) return false;
  if (entry.nRecordLength < reader.Position() - start) return false;
  entry.strName = CString(Utf16ToWide(name));
  return true;
}

}  // namespace

// --- streams and storage -----------------------------------------------------------

StreamWrapper::StreamWrapper(GsfInput* stream, const CString& name) : m_pStream(stream), m_strName(name) {}

StreamWrapper::~StreamWrapper() {
  if (m_pStream) g_object_unref(m_pStream);
}

bool StreamWrapper::Read(void* buffer, std::uint64_t count) {
  if (count == 0) return true;
  return gsf_input_read(m_pStream, static_cast<size_t>(count), static_cast<guint8*>(buffer)) != nullptr;
}

std::uint64_t StreamWrapper::Stat() const {
  const gsf_off_t size = gsf_input_size(m_pStream);
  return size < 0 ? 0 : static_cast<std::uint64_t>(size);
}

StorageWrapper::~StorageWrapper() {
  if (m_pStorage) g_object_unref(m_pStorage);
}

bool StorageWrapper::Open(const CString& path) {
  InitGsfOnce();
  GsfInput* input = gsf_input_stdio_new(ToNativePath(path).c_str(), nullptr);
  return input && OpenInput(input, path);
}

bool StorageWrapper::OpenMemory(const std::string& bytes, const CString& nameForMessages) {
  InitGsfOnce();
  GsfInput* input = gsf_input_memory_new(reinterpret_cast<const guint8*>(bytes.data()),
                                         static_cast<gsf_off_t>(bytes.size()), FALSE);
  return input && OpenInput(input, nameForMessages);
}

bool StorageWrapper::OpenInput(GsfInput* input, const CString& path) {
  if (!HasCompoundSignature(input)) {
    g_object_unref(input);
    return false;
  }
  m_pStorage = RootHasNoSiblings(input) ? gsf_infile_msole_new(input, nullptr) : nullptr;
  g_object_unref(input);  // the storage holds its own reference
  if (!m_pStorage) std::wcout << L"Error: Can not open storage - " << path.GetString() << std::endl;
  return m_pStorage != nullptr;
}

std::unique_ptr<StreamWrapper> StorageWrapper::OpenStream(const CString& name) {
  if (!m_pStorage) return nullptr;
  const CString bounded = name.Left(kStreamNameCapacity - 1);
  GsfInput* stream = gsf_infile_child_by_name(m_pStorage, bounded.ToUtf8().c_str());
  // A storage inside the storage is no stream.
  if (stream && GSF_IS_INFILE(stream) && gsf_infile_num_children(GSF_INFILE(stream)) >= 0) {
    g_object_unref(stream);
    return nullptr;
  }
  return stream ? std::make_unique<StreamWrapper>(stream, bounded) : nullptr;
}

// --- the database ----------------------------------------------------------------

ThumbDB::ThumbDB(const CString& path) : m_strPath(path) { ReadCatalog(); }

std::unique_ptr<ThumbDB> ThumbDB::FromMemory(std::string bytes) {
  std::unique_ptr<ThumbDB> db(new ThumbDB());
  db->m_strPath = L"<memory>";
  db->m_pBytes = std::make_unique<const std::string>(std::move(bytes));
  db->ReadCatalog();
  return db;
}

ThumbDB::~ThumbDB() = default;

bool ThumbDB::OpenStorage(StorageWrapper& storage) const {
  return m_pBytes ? storage.OpenMemory(*m_pBytes, m_strPath) : storage.Open(m_strPath);
}

void ThumbDB::ReadCatalog() {
  StorageWrapper storage;
  if (!OpenStorage(storage)) return;
  const std::unique_ptr<StreamWrapper> catalog = storage.OpenStream(L"Catalog");
  if (!catalog) return;
  const std::uint64_t size = catalog->Stat();
  if (size > kMaxCatalogBytes) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<WARNING> thumbs.db catalog of %llu bytes is over the limit: %s",
                    size, m_strPath);
    return;
  }
  if (size < kCatalogHeaderBytes) return;
  std::vector<BYTE> bytes(static_cast<size_t>(size));
  if (!catalog->Read(bytes.data(), size)) return;
  ParseCatalog(bytes);
}

void ThumbDB::ParseCatalog(const std::vector<BYTE>& catalog) {
  CatalogReader reader(catalog);
  for (DWORD& value : m_nHeader) reader.Read32(value);
  const auto count = static_cast<std::int32_t>(m_nHeader[1]);
  if (count > kMaxCatalogEntries) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<WARNING> thumbs.db catalog of %d entries is over the limit: %s",
                    count, m_strPath);
    return;
  }
  if (count <= 0) return;
  for (std::int32_t i = 0; i < count; ++i) {
    ThumbDBEntry entry;
    if (!ReadEntry(reader, entry)) return;
    m_Entries.push_back(std::move(entry));
  }
}

CString ThumbDB::StreamNameOf(DWORD index) {
  CString name;
  name.Format(L"%u", index);
  return name.MakeReverse();
}

std::vector<BYTE> ThumbDB::GetThumbData(const CString& name) const {
  const ThumbDBEntry* found = nullptr;
  for (const ThumbDBEntry& entry : m_Entries) {
    if (entry.strName == name) {
      found = &entry;
      break;
    }
  }
  if (!found) return {};
  StorageWrapper storage;
  if (!OpenStorage(storage)) return {};
  const std::unique_ptr<StreamWrapper> stream = storage.OpenStream(StreamNameOf(found->nIndex));
  if (!stream) return {};
  const std::uint64_t size = stream->Stat();
  if (size > kMaxThumbnailBytes) {
    g_ITrace->Trace(TRACE_LEVEL_ERROR, TRACE_FLUSH, L"<WARNING> thumbs.db thumbnail of %llu bytes is over the limit: %s",
                    size, m_strPath);
    return {};
  }
  if (size <= kThumbnailHeaderBytes) return {};
  std::vector<BYTE> bytes(static_cast<size_t>(size));
  if (!stream->Read(bytes.data(), size)) return {};
  bytes.erase(bytes.begin(), bytes.begin() + kThumbnailHeaderBytes);
  return bytes;
}

}  // namespace KarvelUI
