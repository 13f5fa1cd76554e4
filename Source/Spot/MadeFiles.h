#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "BWF/AES31BWF.h"
#include "BWF/OutputFile.h"
#include "Base/FileStamp.h"

namespace velmora {

/// Files that a run has made and that further events need in just the same form. Those get copies
/// of the first, made by the system: where files share blocks they cost next to nothing, elsewhere
/// what `cp` costs. Each is a file of its own.
///
/// A copy is made only while source and first file are as they were, which their stamps tell.
/// Otherwise, and for small files, the file is made anew.
class MadeFiles {
 public:
  /// What a file is made of, and how. The gain is the 64 bits of its decibels; a depth change has
  /// none.
  struct Recipe {
    const AES31BWF* source = nullptr;
    std::int32_t bitDepth = 0;
    std::optional<std::uint64_t> gainDb;

    auto operator<=>(const Recipe&) const = default;
  };

  /// Makes `file` a copy of one that was noted for the recipe.
  /// @return a CopyStatus as making it anew would have given; none if it has to be made anew
  [[nodiscard]] std::optional<std::int32_t> CopyOf(const Recipe& recipe, OutputFile& file);

  /// Whether a recipe's file is large enough for a copy to pay.
  [[nodiscard]] static bool IsWorthNoting(const Recipe& recipe);
  /// To be called before a file is made that is needed again: the stamp of its source, for Note.
  [[nodiscard]] static std::optional<FileStamp> Begin(const Recipe& recipe);
  /// Notes a file that was made whole.
  void Note(const Recipe& recipe, const std::optional<FileStamp>& source, const std::string& path);

 private:
  struct Made {
    std::string path;
    FileStamp stamp;
    FileStamp source;
  };

  std::map<Recipe, Made> made_;
};

}  // namespace velmora
