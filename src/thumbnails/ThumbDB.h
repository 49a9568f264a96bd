#pragma once

// The reader of a folder's "thumbs.db": an OLE compound file holding a
// "Catalog" stream and one stream per thumbnail. The catalog is read once;
// each lookup opens the file again and returns the stored image bytes.
//
// Catalog: four 32-bit header values (header word, entry count, thumbnail
// width and height), then per entry its record length, index, two time
// halves, the UTF-16 file name up to and including a 0 character, and one
// more 16-bit word. An entry's thumbnail lives in the stream named by its
// index's decimal digits reversed (10 -> "01"), behind a 12-byte header.
//
// Every size in the file is hostile, so the reader caps what it believes:
//   kMaxCatalogBytes    a larger "Catalog" stream is not read (no entries);
//   kMaxCatalogEntries  a larger entry count is refused (no entries);
//   kMaxNameLength      a name that runs on longer without its 0 character
//                       is damage;
//   kMaxThumbnailBytes  a larger thumbnail stream is not read (no thumbnail).
// Entries are read from the catalog's bytes, never allocated by the count.
// A catalog that ends inside an entry, or whose entry has a record length
// shorter than the bytes the entry takes, is damaged from there on: the
// complete entries before the damage stay usable, the rest are dropped.
// A thumbnail stream of 12 bytes or fewer yields no thumbnail.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <karvelui/CString.h>
#include <karvelui/Types.h>

// libgsf's handles (global, as it declares them).
typedef struct _GsfInput GsfInput;
typedef struct _GsfInfile GsfInfile;

namespace KarvelUI {

inline constexpr std::uint64_t kMaxCatalogBytes = 16u << 20;
inline constexpr std::int32_t kMaxCatalogEntries = 1 << 18;
inline constexpr int kMaxNameLength = 260;  // UTF-16 units before the 0 character
inline constexpr std::uint64_t kMaxThumbnailBytes = 2u << 20;
inline constexpr std::uint64_t kThumbnailHeaderBytes = 12;

// One opened stream of the storage.
class StreamWrapper {
 public:
  StreamWrapper(GsfInput* stream, const CString& name);
  virtual ~StreamWrapper();
  StreamWrapper(const StreamWrapper&) = delete;
  StreamWrapper& operator=(const StreamWrapper&) = delete;

  // True when all `count` bytes were read.
  bool Read(void* buffer, std::uint64_t count);
  std::uint64_t Stat() const;
  const CString& GetName() const { return m_strName; }

 private:
  GsfInput* m_pStream;
  CString m_strName;
};

// The root storage of a compound file, from a file or from bytes in memory.
class StorageWrapper {
 public:
  StorageWrapper() = default;
  virtual ~StorageWrapper();
  StorageWrapper(const StorageWrapper&) = delete;
  StorageWrapper& operator=(const StorageWrapper&) = delete;

  // False for a file that is not a compound file (missing, too short, no
  // signature), silently; a compound file that cannot be opened also writes
  // "Error: Can not open storage - <path>" to the standard wide output.
  bool Open(const CString& path);
  // The same over bytes the caller keeps alive while the storage is open.
  bool OpenMemory(const std::string& bytes, const CString& nameForMessages);
  // The named stream of the root storage, or null.
  std::unique_ptr<StreamWrapper> OpenStream(const CString& name);

 private:
  bool OpenInput(GsfInput* input, const CString& path);

  GsfInfile* m_pStorage = nullptr;
};

struct ThumbDBEntry {
  DWORD nRecordLength = 0;
  DWORD nIndex = 0;
  DWORD nTimeLow = 0;
  DWORD nTimeHigh = 0;
  CString strName;
  WORD nTrailer = 0;
};

class ThumbDB {
 public:
  // Reads the catalog of the file; a file that cannot be read gives an object
  // without entries.
  explicit ThumbDB(const CString& path);
  // The same over a copy of the file's bytes (tests and fuzzing).
  static std::unique_ptr<ThumbDB> FromMemory(std::string bytes);
  virtual ~ThumbDB();
  ThumbDB(const ThumbDB&) = delete;
  ThumbDB& operator=(const ThumbDB&) = delete;

  // The image bytes stored for `name` (exact, case-sensitive; the first entry
  // of that name wins); empty when there is none.
  std::vector<BYTE> GetThumbData(const CString& name) const;

  const std::vector<ThumbDBEntry>& GetEntries() const { return m_Entries; }
  const CString& GetPath() const { return m_strPath; }
  // The catalog header in file order: header word, entry count, width, height.
  const DWORD* GetHeader() const { return m_nHeader; }

  // "1", "01", "503": the stream of index 1, 10, 305.
  static CString StreamNameOf(DWORD index);

 private:
  ThumbDB() = default;
  bool OpenStorage(StorageWrapper& storage) const;
  void ReadCatalog();
  void ParseCatalog(const std::vector<BYTE>& catalog);

  CString m_strPath;
  std::unique_ptr<const std::string> m_pBytes;  // set when read from memory
  DWORD m_nHeader[4] = {};
  std::vector<ThumbDBEntry> m_Entries;
};

}  // namespace KarvelUI
