#include "platform/Registry.h"

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include <karvelui/TextCodec.h>

namespace KarvelUI {
namespace {

constexpr const char* kFallbackCommand = "xdg-open \"%1\"";
constexpr const wchar_t* kUserChoiceKey =
    L"Software\\Microsoft\\Windows\\Shell\\Associations\\UrlAssociations\\%s\\UserChoice";

std::string EnvOr(const char* name, const std::string& fallback) {
  const char* value = std::getenv(name);
  return value && *value ? std::string(value) : fallback;
}

std::string HomeBased(const char* variable, const char* underHome) {
  const char* value = std::getenv(variable);
  if (value && value[0] == '/') return value;
  const char* home = std::getenv("HOME");
  return home && *home ? std::string(home) + underHome : std::string();
}

std::vector<std::string> SplitList(const std::string& text, char separator) {
  std::vector<std::string> parts;
  size_t start = 0;
  for (;;) {
    const size_t at = text.find(separator, start);
    std::string part = text.substr(start, at == std::string::npos ? std::string::npos : at - start);
    if (!part.empty()) parts.push_back(std::move(part));
    if (at == std::string::npos) return parts;
    start = at + 1;
  }
}

std::string Trimmed(const std::string& s) {
  const size_t first = s.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return std::string();
  return s.substr(first, s.find_last_not_of(" \t\r\n") - first + 1);
}

// Key-file string escapes: \s \n \t \r \\.
std::string Unescaped(const std::string& value) {
  std::string out;
  for (size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '\\' || i + 1 == value.size()) {
      out += value[i];
      continue;
    }
    switch (const char c = value[++i]) {
      case 's': out += ' '; break;
      case 'n': out += '\n'; break;
      case 't': out += '\t'; break;
      case 'r': out += '\r'; break;
      default: out += c; break;
    }
  }
  return out;
}

// The value of key in [section] of an XDG key file (desktop entries and
// mimeapps.list share the format).
std::optional<std::string> ReadKeyFileValue(const std::string& path, const std::string& section,
                                            const std::string& key) {
  std::ifstream in(path);
  if (!in) return std::nullopt;
  std::string line;
  bool inSection = false;
  while (std::getline(in, line)) {
    line = Trimmed(line);
    if (line.empty() || line[0] == '#') continue;
    if (line[0] == '[') {
      inSection = line == "[" + section + "]";
      continue;
    }
    const size_t eq = line.find('=');
    if (inSection && eq != std::string::npos && Trimmed(line.substr(0, eq)) == key)
      return Unescaped(Trimmed(line.substr(eq + 1)));
  }
  return std::nullopt;
}

std::vector<std::string> ApplicationFolders() {
  std::vector<std::string> folders;
  const std::string dataHome = HomeBased("XDG_DATA_HOME", "/.local/share");
  if (!dataHome.empty()) folders.push_back(dataHome + "/applications");
  for (const std::string& dir : SplitList(EnvOr("XDG_DATA_DIRS", "/usr/local/share:/usr/share"), ':'))
    folders.push_back(dir + "/applications");
  return folders;
}

std::vector<std::string> MimeAppsLists() {
  std::vector<std::string> lists;
  const std::string configHome = HomeBased("XDG_CONFIG_HOME", "/.config");
  if (!configHome.empty()) lists.push_back(configHome + "/mimeapps.list");
  for (const std::string& dir : SplitList(EnvOr("XDG_CONFIG_DIRS", "/etc/xdg"), ':'))
    lists.push_back(dir + "/mimeapps.list");
  for (const std::string& folder : ApplicationFolders()) lists.push_back(folder + "/mimeapps.list");
  return lists;
}

std::optional<std::string> FindDesktopEntry(const std::string& id) {
  if (id.find('/') != std::string::npos) return std::nullopt;
  for (const std::string& folder : ApplicationFolders()) {
    const std::string path = folder + "/" + id;
    if (std::ifstream(path)) return path;
  }
  return std::nullopt;
}

// Exec field codes: the URL ones become "%1", "%%" a percent sign, the rest
// (icon, name, location) are dropped.
std::string CommandFromExec(const std::string& exec) {
  std::string command;
  for (size_t i = 0; i < exec.size(); ++i) {
    if (exec[i] != '%' || i + 1 == exec.size()) {
      command += exec[i];
      continue;
    }
    const char code = exec[++i];
    if (code == '%') command += '%';
    else if (code == 'u' || code == 'U' || code == 'f' || code == 'F') command += "\"%1\"";
  }
  return Trimmed(command);
}

}  // namespace

DesktopBrowser FindDesktopBrowser(const char* scheme) {
  DesktopBrowser browser;
  browser.command = CString(kFallbackCommand);
  const std::string key = std::string("x-scheme-handler/") + scheme;
  for (const std::string& list : MimeAppsLists()) {
    const auto ids = ReadKeyFileValue(list, "Default Applications", key);
    if (!ids) continue;
    for (const std::string& id : SplitList(*ids, ';')) {
      const auto entry = FindDesktopEntry(id);
      if (!entry) continue;
      browser.desktopId = CString(id.c_str());
      const auto exec = ReadKeyFileValue(*entry, "Desktop Entry", "Exec");
      if (exec && !CommandFromExec(*exec).empty()) browser.command = CString(CommandFromExec(*exec).c_str());
      return browser;
    }
  }
  return browser;
}

bool RegistryKey::Open(RegistryRoot root, const CString& path) {
  m_open = false;
  m_values.clear();
  for (const char* scheme : {"http", "https"}) {
    const CString name(scheme);
    CString choiceKey;
    choiceKey.Format(kUserChoiceKey, name);
    const bool isCommand = root == RegistryRoot::ClassesRoot &&
                           path.CompareNoCase(name + L"\\shell\\open\\command") == 0;
    const bool isChoice = root != RegistryRoot::LocalMachine && path.CompareNoCase(choiceKey) == 0;
    if (!isCommand && !isChoice) continue;
    const DesktopBrowser browser = FindDesktopBrowser(scheme);
    if (isCommand) {
      m_values.emplace_back(CString(), browser.command);
    } else {
      if (browser.desktopId.IsEmpty()) return false;
      m_values.emplace_back(CString(L"Progid"), browser.desktopId);
    }
    m_open = true;
    return true;
  }
  return false;
}

bool RegistryKey::QueryString(const CString& name, CString& value) const {
  for (const auto& [valueName, data] : m_values) {
    if (valueName.CompareNoCase(name) == 0) {
      value = data;
      return true;
    }
  }
  return false;
}

bool RegistryKey::EnumValue(int index, CString& name, CString& value) const {
  if (index < 0 || static_cast<size_t>(index) >= m_values.size()) return false;
  name = m_values[static_cast<size_t>(index)].first;
  value = m_values[static_cast<size_t>(index)].second;
  return true;
}

}  // namespace KarvelUI
