#include "BenchSupport.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <vector>

#include "BWF/AES31BWF.h"

namespace velmora::bench {
namespace {

/// A timestamp of 25 frames and 48 kHz.
std::string Timestamp(std::int32_t frames) {
  char text[32];
  std::snprintf(text, sizeof text, "%02d.%02d:%02d:%02d/0000", frames / 90000 % 24,
                frames / 1500 % 60, frames / 25 % 60, frames % 25);
  return text;
}

constexpr int kSources = 100;

/// All sources of a project, by one file.
void FillWithSources(const std::string& folder) {
  if (!std::filesystem::create_directory(folder)) return;
  const std::string noise = WriteNoise(24, 1);
  for (int i = 1; i <= kSources; ++i) {
    std::filesystem::create_hard_link(noise, folder + "/s" + std::to_string(i) + ".wav");
  }
}

struct Folder {
  Folder() : path((std::filesystem::temp_directory_path() / "velmora-bench-XXXXXX").string()) {
    if (const char* const told = std::getenv("VELMORA_BENCH_FOLDER"); told != nullptr) {
      path = told;
      stays = true;
      std::filesystem::create_directories(path);
    } else if (mkdtemp(path.data()) == nullptr) {
      Fail("no temporary folder can be made");
    }
  }
  ~Folder() {
    std::error_code ignored;
    if (!stays) std::filesystem::remove_all(path, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string path;
  bool stays = false;
};

}  // namespace

const std::string& InputFolder() {
  static const Folder folder;
  return folder.path;
}

void GrowingEvents(benchmark::internal::Benchmark* benchmark) {
  constexpr std::int64_t kFew = 1000;
  const char* const told = std::getenv("VELMORA_BENCH_EVENTS");
  const std::int64_t many = told != nullptr ? std::atoll(told) : 20000;
  for (const std::int64_t count : std::set{kFew, std::max(many / 10, kFew), std::max(many, kFew)}) {
    benchmark->Arg(count);
  }
}

std::string WriteProject(std::int32_t cuts, Audio audio) {
  const std::string folder = InputFolder() + (audio == Audio::Found ? "/found" : "");
  std::string path = folder + "/cuts" + std::to_string(cuts) + ".adl";
  if (std::filesystem::exists(path)) return path;
  if (audio == Audio::Found) FillWithSources(folder);
  const std::string part = path + ".part";
  std::ofstream file(part);
  file << "<ADL>\n<PROJECT>\n(PROJ_TITLE) \"Benchmark\"\n</PROJECT>\n<SOURCE_INDEX>\n";
  for (int i = 1; i <= kSources; ++i) {
    file << "(Index) " << i << " (F) \"URL:file://localhost/a/s" << i
         << ".wav\" _ 00.00:00:00/0000 01.00:00:00/0000\n";
  }
  file << "</SOURCE_INDEX>\n<EVENT_LIST>\n";
  for (std::int32_t i = 0; i < cuts; ++i) {
    file << "(Entry) " << i + 1 << "\n (Cut) I " << i % kSources + 1 << " 1 " << i % 24 + 1 << ' '
         << Timestamp(i % 1000) << ' ' << Timestamp(i * 10) << ' ' << Timestamp(i * 10 + 20)
         << " _\n";
    if (i % 4 == 0) {
      file << " (Infade) 00.00:00,05/0000 LIN _ _ _\n (Rem) NAME \"clip " << i << "\"\n";
    }
  }
  file << "</EVENT_LIST>\n</ADL>\n";
  if (!file.flush()) Fail(part + " cannot be written");
  std::filesystem::rename(part, path);
  return path;
}

std::string WriteNoise(std::int32_t bitDepth, std::int32_t megabytes) {
  std::string path = InputFolder() + "/noise" + std::to_string(bitDepth) + "-" +
                     std::to_string(megabytes) + ".wav";
  if (std::filesystem::exists(path)) return path;
  const std::int32_t frames = megabytes * 1000000 / (bitDepth / 8);
  AES31BWF file(path.c_str(), 48000, 1, bitDepth, frames);
  std::minstd_rand random(31);
  std::vector<char> block(1000000);
  for (char& byte : block) byte = static_cast<char>(random() >> 8);
  for (std::int32_t i = 0; i < megabytes; ++i) {
    std::fwrite(block.data(), 1, block.size(), file.stream.get());
  }
  file.CloseFile();
  if (!file.IsValid() || file.WriteFailed()) Fail(path + " cannot be written");
  return path;
}

void Fail(const std::string& what) {
  std::fprintf(stderr, "velmora_bench: %s\n", what.c_str());
  std::exit(1);
}

}  // namespace velmora::bench
