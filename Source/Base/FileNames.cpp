#include "Base/FileNames.h"

namespace velmora {

std::string FileNameOf(const std::string& path) {
  return std::string(FileNameIn(path));
}

std::string_view FileNameIn(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

std::string ExtensionOf(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  return dot == std::string::npos ? std::string() : path.substr(dot);
}

}  // namespace velmora
