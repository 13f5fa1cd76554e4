#include "Desktop/Logic/FreeName.h"

#include <filesystem>
#include <system_error>

#include "Base/FileNames.h"

namespace velmora::desktop {

std::string FreeName(const std::string& base, const std::string& extension) {
  std::string name = base + extension;
  std::error_code error;
  for (int number = 2;
       std::filesystem::symlink_status(name, error).type() != std::filesystem::file_type::not_found;
       ++number) {
    if (error) break;
    name.assign(base).append(" ").append(std::to_string(number)).append(extension);
  }
  return name;
}

std::string StemOf(const std::string& path, const std::string& otherwise) {
  const std::string name = FileNameOf(path);
  const std::string stem = name.substr(0, name.rfind('.'));
  return stem.empty() ? otherwise : stem;
}

}  // namespace velmora::desktop
