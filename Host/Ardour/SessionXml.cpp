#include "Ardour/SessionXml.h"

#include <cerrno>
#include <cstdio>

#include "Base/FileAccess.h"

namespace velmora::ardour {
namespace {

class FileWriter : public pugi::xml_writer {
 public:
  explicit FileWriter(std::FILE* file) : file_(file) {}
  void write(const void* bytes, std::size_t count) override {
    errno = 0;
    if (error_ == 0 && std::fwrite(bytes, 1, count, file_) != count) {
      error_ = errno != 0 ? errno : EIO;
    }
  }
  [[nodiscard]] int Error() const { return error_; }

 private:
  std::FILE* file_;
  int error_ = 0;
};

}  // namespace

bool LoadSessionXml(const std::string& path, pugi::xml_document& xml) {
  return xml.load_file(path.c_str()) && xml.child("Session");
}

int SaveXml(const std::string& path, const pugi::xml_document& xml) {
  FileStream file = CreateFile(path.c_str());
  if (file == nullptr) return errno;
  FileWriter writer(file.get());
  xml.save(writer, "  ", pugi::format_indent, pugi::encoding_utf8);
  const int closing = std::fclose(file.release()) == 0 ? 0 : errno;
  return writer.Error() != 0 ? writer.Error() : closing;
}

}  // namespace velmora::ardour
