#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "BWF/OutputFile.h"

namespace velmora {

/// Where a series of names stands.
struct NameSeries {
  std::uint64_t number = 0;  ///< of the name given last, 0 for the one without a number
  bool made = false;         ///< its file was made and kept
};

/// A new file under the first free name of a series: take_Gain.wav, take_Gain.1.wav,
/// take_Gain.2.wav and on.
///
/// A name counts as free if the folder holds it in no form. Looking a name up reserves nothing, so
/// the name is settled when the file is created: that is done exclusively and never through a link,
/// and goes on to the next number if the name has appeared meanwhile. Two runs into one folder can
/// therefore never share a file. A name that an error hides is passed over too, since it may be
/// taken; where all of some neighbours are hidden, the fault is the folder's, and the first of them
/// stands for all.
class NewFile : public OutputFile {
 public:
  /// Removes the file if it was created but not kept: a name taken in vain is given back.
  ~NewFile() override;

  /// Looks the first free name up, unless that has been done or the file has been created.
  [[nodiscard]] const std::string& Path() override;
  [[nodiscard]] FileStream Create() override;
  void Keep() override;
  /// The file goes with this object.
  void Discard() override;

 private:
  friend class OutputNames;
  /// @param series moved on to the name that is taken; must outlive this
  NewFile(std::string base, std::string extension, NameSeries& series);

  /// Takes the first free name of the series from its present number on.
  void GoToFreeName();
  void GoTo(std::uint64_t number);
  void GoToLikelyName();
  /// Creates the file under the name that it stands at.
  [[nodiscard]] FileStream CreateHere();

  std::string base_;
  std::string extension_;
  NameSeries& series_;
  bool named_ = false;  ///< the name has been looked up, or taken
  bool created_ = false;
  bool kept_ = false;
};

/// Finds free names for the files of one run. It remembers where each series of numbers stood, so
/// that a run costs time in proportion to the files that it makes.
class OutputNames {
 public:
  /// A file made from `source`: `folder`/stem, `suffix`, extension. With a null folder it lies
  /// beside the source, and the whole name but its extension stands in for the stem. This object
  /// must outlive the file's.
  [[nodiscard]] NewFile New(const std::string& source, const char* folder, const char* suffix);

  /// The name that such a file would have now.
  [[nodiscard]] std::string Find(const std::string& source, const char* folder, const char* suffix);

 private:
  std::unordered_map<std::string, NameSeries> series_;  ///< by base, NUL, extension
};

/// The stem: from after the last `/` to before the first `.` that follows. Stem and extension
/// follow different rules on purpose, so a name with two dots loses its middle.
[[nodiscard]] std::string CopyBaseName(const char* path);

/// True for whatever would open for reading, a folder too. Never blocks. Not the rule for new
/// files: a name that does not open may be held all the same.
bool FileExists(const char* path);

}  // namespace velmora
