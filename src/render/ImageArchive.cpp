#include "render/ImageArchive.h"

#include <cstring>

namespace KarvelUI {

// --- base: mapping and bounds-checked reads ----------------------------------

int CImageArchive::Open(const wchar_t*) { return 0; }
UINT CImageArchive::GetHeight() { return 0; }
UINT CImageArchive::GetWidth() { return 0; }

CImageArchive::~CImageArchive() = default;

int CImageArchive::OpenMapped(const wchar_t* path) {
  ResetFields();
  if (!path || !*path || !m_mapping.Open(CString(path))) return 0;
  m_pView = m_mapping.Data();
  m_nSize = static_cast<DWORD>(m_mapping.Size());
  const bool ok = CheckView();
  m_mapping.Close();
  m_pView = nullptr;
  return ok ? 1 : 0;
}

int CImageArchive::CheckMemory(const void* data, std::size_t size) {
  ResetFields();
  if (!data || size == 0) return 0;
  m_pView = static_cast<const BYTE*>(data);
  m_nSize = static_cast<DWORD>(size);
  const bool ok = CheckView();
  m_pView = nullptr;
  return ok ? 1 : 0;
}

bool CImageArchive::ReadByte(std::uint64_t at, BYTE& value) const {
  if (!m_pView || at >= m_nSize) return false;
  value = m_pView[at];
  return true;
}

bool CImageArchive::ReadBE16(std::uint64_t at, DWORD& value) const {
  if (!m_pView || at + 2 > m_nSize) return false;
  value = (DWORD(m_pView[at]) << 8) | m_pView[at + 1];
  return true;
}

bool CImageArchive::ReadBE32(std::uint64_t at, DWORD& value) const {
  if (!m_pView || at + 4 > m_nSize) return false;
  value = (DWORD(m_pView[at]) << 24) | (DWORD(m_pView[at + 1]) << 16) | (DWORD(m_pView[at + 2]) << 8) |
          m_pView[at + 3];
  return true;
}

bool CImageArchive::ReadLE16(std::uint64_t at, DWORD& value) const {
  if (!m_pView || at + 2 > m_nSize) return false;
  value = m_pView[at] | (DWORD(m_pView[at + 1]) << 8);
  return true;
}

bool CImageArchive::ReadLE32(std::uint64_t at, DWORD& value) const {
  if (!m_pView || at + 4 > m_nSize) return false;
  value = m_pView[at] | (DWORD(m_pView[at + 1]) << 8) | (DWORD(m_pView[at + 2]) << 16) |
          (DWORD(m_pView[at + 3]) << 24);
  return true;
}

// --- JPEG ----------------------------------------------------------------------

namespace {

constexpr BYTE kJpegMarkerPrefix = 0xFF;
constexpr BYTE kJpegEndOfImage = 0xD9;
constexpr BYTE kJpegStartOfScan = 0xDA;
constexpr BYTE kJpegBaselineFrame = 0xC0;

bool IsStandaloneJpegMarker(BYTE marker) {
  return marker == 0x00 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7);
}

// Index of the marker byte that follows the next FF (and any FF fill bytes)
// at or after `from`; `size` when the data ends first.
std::uint64_t NextJpegMarker(const BYTE* view, std::uint64_t size, std::uint64_t from) {
  if (from >= size) return size;
  const void* prefix = std::memchr(view + from, kJpegMarkerPrefix, size - from);
  if (!prefix) return size;
  std::uint64_t at = static_cast<const BYTE*>(prefix) - view;
  while (at < size && view[at] == kJpegMarkerPrefix) ++at;
  return at;
}

}  // namespace

int CJpgImageArchive::Open(const wchar_t* path) { return OpenMapped(path); }

void CJpgImageArchive::ResetFields() {
  m_nHeight = m_nWidth = 0;
}

bool CJpgImageArchive::CheckView() {
  if (m_nSize < 20 || m_pView[0] != 0xFF || m_pView[1] != 0xD8) return false;
  std::uint64_t at = 2;
  for (;;) {
    const std::uint64_t markerAt = NextJpegMarker(m_pView, m_nSize, at);
    if (markerAt >= m_nSize) return false;
    const BYTE marker = m_pView[markerAt];
    if (IsStandaloneJpegMarker(marker)) {
      at = markerAt + 1;
      continue;
    }
    if (marker == kJpegEndOfImage) return false;  // an image without a scan
    // Only the baseline frame header is read; other frame types keep size 0.
    if (marker == kJpegBaselineFrame) {
      DWORD height = 0, width = 0;
      if (!ReadBE16(markerAt + 4, height) || !ReadBE16(markerAt + 6, width)) return false;
      m_nHeight = height;
      m_nWidth = width;
    }
    at = SkipSegment(markerAt);
    if (at == 0) return false;
    if (marker == kJpegStartOfScan) return IsComplete(at);
  }
}

std::uint64_t CJpgImageArchive::SkipSegment(std::uint64_t at) const {
  DWORD length = 0;
  if (!ReadBE16(at + 1, length)) return 0;
  const std::uint64_t next = at + 1 + length;
  return next > m_nSize ? 0 : next;
}

bool CJpgImageArchive::IsComplete(std::uint64_t from) const {
  if (m_pView[m_nSize - 2] == kJpegMarkerPrefix && m_pView[m_nSize - 1] == kJpegEndOfImage) return true;
  for (std::uint64_t at = from;;) {
    const std::uint64_t markerAt = NextJpegMarker(m_pView, m_nSize, at);
    if (markerAt >= m_nSize) break;
    if (m_pView[markerAt] == kJpegEndOfImage) return true;
    at = markerAt + 1;
  }
  const std::uint64_t pixelBytes = std::uint64_t(m_nWidth) * m_nHeight * 3;
  return m_nSize < pixelBytes + kTruncationSlack;
}

// --- GIF -----------------------------------------------------------------------

namespace {

constexpr BYTE kGifExtension = 0x21;
constexpr BYTE kGifImageDescriptor = 0x2C;
constexpr BYTE kGifTrailer = 0x3B;
constexpr std::uint64_t kGifScreenDescriptorEnd = 13;

bool IsKnownGifExtension(BYTE label) {
  return label == 0x01 || label == 0xF9 || label == 0xFE || label == 0xFF;
}

std::uint64_t GifColorTableEntries(BYTE packed) { return std::uint64_t(1) << ((packed & 0x07) + 1); }

}  // namespace

int CGifImageArchive::Open(const wchar_t* path) { return OpenMapped(path); }

void CGifImageArchive::ResetFields() {
  m_nImageCount = 0;
  m_nWidth = m_nHeight = 0;
  m_bGlobalColorTable = m_nColorResolution = m_bSortFlag = m_nGlobalColorTableSize = 0;
  m_nBackgroundColor = m_nPixelAspectRatio = m_nReserved = 0;
  m_nTrailerOffset = 0;
}

bool CGifImageArchive::ReadScreenDescriptor(std::uint64_t& blocks) {
  if (m_nSize < 11 || std::memcmp(m_pView, "GIF8", 4) != 0 || (m_pView[4] != '7' && m_pView[4] != '9') ||
      m_pView[5] != 'a')
    return false;
  DWORD width = 0, height = 0;
  ReadLE16(6, width);
  ReadLE16(8, height);
  m_nWidth = static_cast<WORD>(width);
  m_nHeight = static_cast<WORD>(height);
  const BYTE flags = m_pView[10];
  m_bGlobalColorTable = (flags & 0x80) ? 1 : 0;
  m_nColorResolution = ((flags >> 4) & 0x07) + 1;
  if (m_bGlobalColorTable) {
    m_bSortFlag = (flags >> 3) & 0x01;
    m_nGlobalColorTableSize = static_cast<int>(GifColorTableEntries(flags));
  }
  BYTE value = 0;
  if (!ReadByte(11, value)) return false;
  m_nBackgroundColor = value;
  if (!ReadByte(12, value)) return false;
  m_nPixelAspectRatio = value;
  blocks = kGifScreenDescriptorEnd + 3 * std::uint64_t(m_nGlobalColorTableSize);
  return blocks <= m_nSize;
}

bool CGifImageArchive::CheckView() {
  std::uint64_t at = 0;
  if (!ReadScreenDescriptor(at)) return false;
  while (at < m_nSize) {
    const BYTE block = m_pView[at];
    Walk walk = Walk::Continue;
    if (block == 0x00) {
      ++at;
    } else if (block == kGifExtension) {
      walk = SkipExtension(at);
    } else if (block == kGifImageDescriptor) {
      walk = SkipImage(at);
    } else if (block == kGifTrailer) {
      m_nTrailerOffset = static_cast<DWORD>(at + 1);
      break;
    } else {
      return false;
    }
    if (walk == Walk::Fail) return false;
    if (walk == Walk::Stop) break;
  }
  return m_nImageCount > 0 && m_nTrailerOffset != 0;
}

bool CGifImageArchive::SkipSubBlocks(std::uint64_t& at) const {
  for (;;) {
    BYTE length = 0;
    if (!ReadByte(at, length)) return false;
    at += 1 + std::uint64_t(length);
    if (length == 0) return true;
  }
}

CGifImageArchive::Walk CGifImageArchive::SkipExtension(std::uint64_t& at) const {
  BYTE label = 0;
  if (!ReadByte(at + 1, label)) return Walk::Stop;
  if (!IsKnownGifExtension(label)) return Walk::Fail;
  at += 2;
  return SkipSubBlocks(at) ? Walk::Continue : Walk::Stop;
}

CGifImageArchive::Walk CGifImageArchive::SkipImage(std::uint64_t& at) {
  ++m_nImageCount;
  at += 1 + 8;  // separator, then position and size
  BYTE packed = 0;
  if (!ReadByte(at, packed)) return Walk::Fail;
  ++at;
  if (packed & 0x80) {
    at += 3 * GifColorTableEntries(packed);
    if (at >= m_nSize) return Walk::Fail;
  }
  ++at;  // LZW minimum code size
  return SkipSubBlocks(at) ? Walk::Continue : Walk::Stop;
}

// --- PNG -----------------------------------------------------------------------

int CPngImageArchive::Open(const wchar_t* path) { return OpenMapped(path); }

void CPngImageArchive::ResetFields() {
  m_nHeight = m_nWidth = m_nEndOffset = 0;
}

bool CPngImageArchive::CheckView() {
  static const BYTE kSignature[8] = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A};
  if (m_nSize < 20 || std::memcmp(m_pView, kSignature, sizeof kSignature) != 0) return false;
  bool headerSeen = false, dataSeen = false;
  std::uint64_t at = sizeof kSignature;
  for (;;) {
    DWORD length = 0;
    if (!ReadBE32(at, length) || at + 8 > m_nSize) return false;
    const BYTE* type = m_pView + at + 4;
    const std::uint64_t data = at + 8;
    const std::uint64_t next = data + length + 4;  // after the CRC
    if (std::memcmp(type, "IHDR", 4) == 0) {
      DWORD width = 0, height = 0;
      if (!ReadBE32(data, width) || !ReadBE32(data + 4, height)) return false;
      m_nWidth = width;
      m_nHeight = height;
      headerSeen = true;
    } else if (std::memcmp(type, "PLTE", 4) == 0) {
      if (!headerSeen || dataSeen) return false;
    } else if (std::memcmp(type, "IDAT", 4) == 0) {
      if (!headerSeen) return false;
      dataSeen = true;
    } else if (std::memcmp(type, "IEND", 4) == 0) {
      if (!headerSeen || !dataSeen || next > m_nSize) return false;
      m_nEndOffset = static_cast<DWORD>(next);
      return true;
    }
    at = next;
  }
}

// --- BMP -----------------------------------------------------------------------

int CBmpImageArchive::Open(const wchar_t* path) { return OpenMapped(path); }

void CBmpImageArchive::ResetFields() {
  m_nHeight = m_nWidth = 0;
}

bool CBmpImageArchive::CheckView() {
  if (m_nSize < 2 || m_pView[0] != 'B' || m_pView[1] != 'M' || m_nSize < 54) return false;
  DWORD declaredSize = 0, reserved1 = 0, reserved2 = 0, pixelOffset = 0;
  ReadLE32(2, declaredSize);
  ReadLE16(6, reserved1);
  ReadLE16(8, reserved2);
  ReadLE32(10, pixelOffset);
  if (reserved1 != 0 || reserved2 != 0 || pixelOffset > declaredSize) return false;

  DWORD infoSize = 0, bitCount = 0, planes = 0, width = 0, height = 0;
  ReadLE32(14, infoSize);
  if (infoSize != 40 && infoSize != 108 && infoSize != 124) return false;
  // Palette bitmaps (1, 4, 8 bits) are refused on purpose.
  ReadLE16(28, bitCount);
  if (bitCount != 16 && bitCount != 24 && bitCount != 32) return false;
  ReadLE32(18, width);
  ReadLE32(22, height);
  m_nWidth = width;
  m_nHeight = height;
  ReadLE16(26, planes);
  if (planes != 1) return false;

  const std::int64_t drift = std::int64_t(m_nSize) - std::int64_t(declaredSize);
  return drift >= -kSizeTolerance && drift <= kSizeTolerance;
}

}  // namespace KarvelUI
