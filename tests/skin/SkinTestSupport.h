#pragma once

// Shared pieces of the skin tests: XML written to a temporary folder and
// loaded, and a temporary application folder that the skin manager
// singleton reads its Theme\ files from (released again at the end).

#include <gtest/gtest.h>

#include <string>

#include "platform/Paths.h"
#include <karvelui/SkinManager.h>
#include <karvelui/XmlDocument.h>
#include "support/TempDir.h"

namespace KarvelTest {

inline KarvelUI::CString LibraryPath(const std::filesystem::path& native) {
  return KarvelUI::FromNativePath(native.string());
}

// One XML text loaded into a document through a file.
class LoadedXml {
 public:
  explicit LoadedXml(const std::string& xml) {
    m_loaded = m_doc.LoadFile(LibraryPath(m_dir.Write("doc.xml", xml)));
  }
  KarvelUI::CXmlDocument& Doc() { return m_doc; }
  bool Loaded() const { return m_loaded != 0; }
  void* Node(const wchar_t* path) { return m_doc.PathWalk(path); }
  const TempDir& Dir() const { return m_dir; }

 private:
  TempDir m_dir;
  KarvelUI::CXmlDocument m_doc;
  int m_loaded = 0;
};

// A temporary application folder for the skin manager singleton.
class SkinManagerTest : public testing::Test {
 protected:
  void TearDown() override { KarvelUI::CUISkinManager::FreeInstance(); }

  // The singleton, reading its files below the temporary folder.
  KarvelUI::CUISkinManager* Manager() {
    KarvelUI::CUISkinManager* manager = KarvelUI::CUISkinManager::GetInstance();
    manager->SetAppPath(AppPath());
    return manager;
  }
  KarvelUI::CString AppPath() const { return LibraryPath(m_app.Path()) + L"\\"; }
  void Write(const std::string& relative, const std::string& xml) { m_app.Write(relative, xml); }
  std::string Read(const std::string& relative) const { return TempDir::Read(m_app.Path() / relative); }
  bool Exists(const std::string& relative) const { return std::filesystem::exists(m_app.Path() / relative); }

  TempDir m_app;
};

}  // namespace KarvelTest
