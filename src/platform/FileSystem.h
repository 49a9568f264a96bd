#pragma once

// File and folder operations on library paths (backslash form; converted
// with ToNativePath where they reach the OS). Every operation reports
// failure through its result and never throws.

#include <cstdint>
#include <functional>
#include <string>

#include <karvelui/CString.h>
#include <karvelui/Export.h>

namespace KarvelUI {

// Times are nanoseconds since 1970-01-01 UTC.
struct FileStatus {
  std::uint64_t size = 0;
  // Birth time where the file system records one, else the last status
  // change (POSIX has no creation time of its own).
  std::int64_t creationTime = 0;
  std::int64_t modificationTime = 0;
  std::int64_t accessTime = 0;
  bool isFolder = false;
};

bool PathExists(const CString& path);
bool GetPathStatus(const CString& path, FileStatus& status);
// Sets access and modification times; creation time cannot be set here.
bool SetPathTimes(const CString& path, std::int64_t accessTime, std::int64_t modificationTime);
bool RemoveFile(const CString& path);

// Whether this process may create files in the folder, as the OS answers
// (permissions, a read-only mount), or as the installed hook answers.
bool IsFolderWritable(const CString& folder);
// Tests answer IsFolderWritable through a hook (an empty function removes
// it), since permissions do not stop a test run as root. Returns the
// previous hook.
using FolderWritableHook = std::function<bool(const CString& folder)>;
FolderWritableHook SetFolderWritableHook(FolderWritableHook hook);

enum class CreateFolderResult { Created, AlreadyExists, Failed };
// Creates one folder (its parent must exist).
CreateFolderResult CreateFolder(const CString& path);
// Creates the folder and any missing parents; true when it exists afterwards.
bool CreateFolderTree(const CString& path);

// Creates the folder and its missing parents with the given permission bits
// (existing folders keep theirs); true when it exists afterwards.
bool CreatePrivateFolderTree(const CString& path, unsigned mode);

enum class WriteFileResult { Written, NotWritable, Failed };
// Replaces the file at once with `bytes` and permission bits `mode`: the
// bytes go into a temporary file beside it, which is then renamed over it,
// so a reader sees either the old file or the whole new one. NotWritable
// when the folder refuses new files (no permission, read-only file system).
WriteFileResult WriteFileAtomically(const CString& path, const std::string& bytes, unsigned mode);

// POSIX hides a file only by a leading dot in its name, which would rename
// it under the callers who keep its path (the RAW preview cache). So this is
// a deliberate no-op that reports whether the path exists.
bool SetHiddenAttribute(const CString& path, bool hidden);

}  // namespace KarvelUI
