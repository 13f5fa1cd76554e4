#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "Check/Finding.h"
#include "Field/FieldProject.h"

namespace velmora::check {

/// What a finding is about. Event and source are positions in Project::events and
/// Project::sources. An event that is not named is looked up by the offset.
struct Place {
  static constexpr std::size_t kWhole = std::numeric_limits<std::size_t>::max();
  std::size_t offset = kWhole;  ///< in bytes from the start of the file; kWhole: the file as such
  std::optional<std::size_t> event = std::nullopt;
  std::optional<std::size_t> source = std::nullopt;
};

/// What stands there, what the system will do with it, what helps.
struct Words {
  std::string text;
  std::string effect;
  std::string remedy;
};

/// Where the judges put what they find.
class Findings {
 public:
  explicit Findings(const field::Project& project);

  void Add(Code code, Severity severity, const Place& place, Words words);

  // Whether something was found there that is more than a note.
  [[nodiscard]] bool HasSeriousAtEvent(std::size_t event) const { return seriousEvents_[event]; }
  [[nodiscard]] bool HasSeriousAtSource(std::size_t source) const {
    return seriousSources_[source];
  }
  [[nodiscard]] bool Has(Code code, Severity severity) const;

  /// All of them with lines, columns and numbers, by place in the file, those of the file as a
  /// whole first.
  [[nodiscard]] std::vector<Finding> Finish() &&;

 private:
  /// The event or source in whose lines an offset lies.
  [[nodiscard]] std::optional<std::size_t> EventAt(std::size_t offset) const;
  [[nodiscard]] std::optional<std::size_t> SourceAt(std::size_t offset) const;
  void FillNumbers(const Place& place, Finding& finding) const;

  struct Stretch {  // of a file that is less than 4 GiB long: the tree counts in 32 bits
    std::uint32_t begin;
    std::uint32_t end;
    std::uint32_t which;
  };
  static std::optional<std::size_t> Find(const std::vector<Stretch>& stretches, std::size_t offset);

  const field::Project& project_;
  std::vector<Stretch> eventStretches_;   ///< by rising begin
  std::vector<Stretch> sourceStretches_;  ///< by rising begin
  std::vector<bool> seriousEvents_;
  std::vector<bool> seriousSources_;
  /// Until they are finished their line is the place in the file plus one, 0 for the file as such,
  /// and their column the order in which they came.
  std::vector<Finding> findings_;
  /// What was said last, by code: mostly the same is said again.
  struct Said {
    SharedText text;
    SharedText effect;
    SharedText remedy;
  };
  std::array<Said, kCodes.size()> said_;
};

}  // namespace velmora::check
