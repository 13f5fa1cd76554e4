// Creates, writes and closes files and does nothing else: what many small pieces are measured
// against.
//
//   velmora_make_files FOLDER COUNT BYTES

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 4) return 1;
  const std::string base = std::string(argv[1]) + "/plain.";
  const std::vector<char> bytes(std::strtoul(argv[3], nullptr, 10), '\x55');
  const unsigned long count = std::strtoul(argv[2], nullptr, 10);
  for (unsigned long i = 0; i < count; ++i) {
    const std::string path = base + std::to_string(i) + ".wav";
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    const bool whole =
        file >= 0 && write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    if (!whole || close(file) != 0) {
      std::perror(path.c_str());
      return 1;
    }
  }
  return 0;
}
