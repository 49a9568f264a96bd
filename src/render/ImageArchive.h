#pragma once

// Picture file checkers: each reads the block structure of one format
// without decoding pixels, tells a complete, well-formed file from a damaged
// or truncated one and reads the picture's width and height.
//
//   CJpgImageArchive jpg;
//   if (jpg.Open(path)) use(jpg.GetWidth(), jpg.GetHeight());
//
// The caller picks the checker from the file type the image library detects
// (BMP 0, JPEG 2, PNG 13, GIF 25). The whole file is mapped read-only for
// the duration of Open and unmapped before it returns; every read is
// bounds-checked against the mapped size, so no file can make a checker read
// outside it.

#include <cstddef>
#include <cstdint>

#include <karvelui/Base.h>
#include "platform/MappedFile.h"

namespace KarvelUI {

class CImageArchive {
 public:
  CImageArchive() = default;
  CImageArchive(const CImageArchive&) = delete;
  CImageArchive& operator=(const CImageArchive&) = delete;

  // 1 when the file is a complete picture of the checker's format.
  virtual int Open(const wchar_t* path);
  virtual UINT GetHeight();
  virtual UINT GetWidth();
  // Virtual so that a caller may own any checker through the base.
  virtual ~CImageArchive();

  // Checks bytes already in memory exactly as Open checks a file's content
  // (fuzzing and tests); the bytes are not kept.
  int CheckMemory(const void* data, std::size_t size);

 protected:
  // What a checker's Open does: clear the fields, map the file, check it,
  // unmap. 0 when the file cannot be opened or mapped (missing, empty,
  // unreadable) or fails the check.
  int OpenMapped(const wchar_t* path);
  virtual void ResetFields() {}
  // Checks the view (m_pView, m_nSize) and fills the fields.
  virtual bool CheckView() { return false; }

  // Bounds-checked readers over the view: false when the bytes at `at` do not
  // all lie inside the file.
  bool ReadByte(std::uint64_t at, BYTE& value) const;
  bool ReadBE16(std::uint64_t at, DWORD& value) const;
  bool ReadBE32(std::uint64_t at, DWORD& value) const;
  bool ReadLE16(std::uint64_t at, DWORD& value) const;
  bool ReadLE32(std::uint64_t at, DWORD& value) const;

  MappedFile m_mapping;  // owns the file mapping while Open runs
  const BYTE* m_pView = nullptr;
  DWORD m_nSize = 0;  // low 32 bits of the file size
};

class CJpgImageArchive : public CImageArchive {
 public:
  int Open(const wchar_t* path) override;
  UINT GetHeight() override { return m_nHeight; }
  UINT GetWidth() override { return m_nWidth; }

  // A truncated file passes unless it is at least this much larger than its
  // pixels at three bytes each: a stream that size without an end marker is
  // not a picture cut short.
  static constexpr std::uint64_t kTruncationSlack = 0x40000;

 private:
  void ResetFields() override;
  bool CheckView() override;
  bool IsComplete(std::uint64_t from) const;
  // Position just after the marker at `at` and its segment; 0 when the
  // segment's length cannot be read or reaches past the end of the file.
  std::uint64_t SkipSegment(std::uint64_t at) const;

  DWORD m_nHeight = 0;
  DWORD m_nWidth = 0;
};

class CGifImageArchive : public CImageArchive {
 public:
  int Open(const wchar_t* path) override;
  UINT GetHeight() override { return m_nHeight; }
  UINT GetWidth() override { return m_nWidth; }

  int GetImageCount() const { return m_nImageCount; }
  DWORD GetTrailerOffset() const { return m_nTrailerOffset; }

 private:
  void ResetFields() override;
  bool CheckView() override;
  bool ReadScreenDescriptor(std::uint64_t& blocks);
  // Skips sub-blocks from `at` up to and past the zero length; false when the
  // data ends first.
  bool SkipSubBlocks(std::uint64_t& at) const;
  enum class Walk { Continue, Stop, Fail };
  Walk SkipImage(std::uint64_t& at);
  Walk SkipExtension(std::uint64_t& at) const;

  int m_nImageCount = 0;
  WORD m_nWidth = 0;
  WORD m_nHeight = 0;
  int m_bGlobalColorTable = 0;
  int m_nColorResolution = 0;
  int m_bSortFlag = 0;
  int m_nGlobalColorTableSize = 0;  // entries
  int m_nBackgroundColor = 0;
  int m_nPixelAspectRatio = 0;
  int m_nReserved = 0;
  DWORD m_nTrailerOffset = 0;  // just after the trailer byte; 0 until seen
};

class CPngImageArchive : public CImageArchive {
 public:
  int Open(const wchar_t* path) override;
  UINT GetHeight() override { return m_nHeight; }
  UINT GetWidth() override { return m_nWidth; }

  DWORD GetEndOffset() const { return m_nEndOffset; }

 private:
  void ResetFields() override;
  bool CheckView() override;

  DWORD m_nHeight = 0;
  DWORD m_nWidth = 0;
  DWORD m_nEndOffset = 0;  // just after the IEND chunk's CRC
};

class CBmpImageArchive : public CImageArchive {
 public:
  int Open(const wchar_t* path) override;
  UINT GetHeight() override { return m_nHeight; }
  UINT GetWidth() override { return m_nWidth; }

  // How far the real file size may stray from the size its header declares.
  static constexpr std::int64_t kSizeTolerance = 100;

 private:
  void ResetFields() override;
  bool CheckView() override;

  DWORD m_nHeight = 0;  // as stored: a top-down bitmap reads as a huge value
  DWORD m_nWidth = 0;
};

}  // namespace KarvelUI
