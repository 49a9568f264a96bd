#pragma once

// Camera RAW pictures reach the image library as JPEG previews kept in a
// per-user cache: "<app data>\thumbnail\<md5 of folder>\<md5 of path>.jpg".
// A cached JPEG is current while it carries the RAW file's modification time,
// which GenerateRawJPGFile copies onto it after each extraction: the preview
// belongs to that version of the RAW file. Reading either file changes only
// access times (relatime, strictatime), so a preview stays current however
// often it is shown; rewriting the RAW file makes it stale. Extraction
// itself is done by the "ZorImgUtil.dll" library (libZorImgUtil.so next to
// this library or the program), through its export
//
//   int ExtrctRawImageFile(const wchar_t* rawPath, const wchar_t* jpgPath);
//
// called with native paths and returning 0 on success.
//
// Callers serialise GenerateRawJPGFile with the resource cache's raw lock.

#include <karvelui/Base.h>

namespace KarvelUI {

// 1 when the path's extension (last dot of the last component) names a RAW
// format, compared without regard to case.
int IsRawPic(const CString& path);

// Forms the cache path of a RAW file and creates its folders; 1 on success.
int GetRawFileJPGPath(const CString& rawPath, CString& jpgPath);

// 1 when both files exist and carry the same modification time.
int TimeStatusCompare(const CString& a, const CString& b);

// Makes sure an up-to-date JPEG of the RAW file exists at jpgPath; 1 on
// success. A stale JPEG is deleted and extracted again.
int GenerateRawJPGFile(const CString& rawPath, const CString& jpgPath);

// The extraction library GenerateRawJPGFile loads, "ZorImgUtil.dll" unless
// replaced (tests point it at stand-ins). Returns the previous name.
CString SetRawExtractorLibrary(const CString& name);

}  // namespace KarvelUI
