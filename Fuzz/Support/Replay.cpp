// In place of libFuzzer: takes each file that is named, and each file of each folder that is named,
// through the target once, and the empty input before all.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// NOLINTNEXTLINE(readability-identifier-naming): libFuzzer names it
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FilesOf(const fs::path& path) {
  if (!fs::is_directory(path)) return {path};
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(path)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

void Replay(const fs::path& path) {
  std::printf("%s\n", path.c_str());
  std::fflush(stdout);  // so that the last line names the input that ended the program
  std::ifstream file(path, std::ios::binary);
  // Memory of its own, of the right size: a read past the end is seen.
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  LLVMFuzzerTestOneInput(nullptr, 0);
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i) {
    for (const fs::path& path : FilesOf(argv[i])) {
      Replay(path);
      ++count;
    }
  }
  std::printf("%zu inputs\n", count);
  return count > 0 ? 0 : 1;
}
