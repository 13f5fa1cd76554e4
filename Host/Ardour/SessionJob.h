#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Ardour/ArdourPlan.h"

namespace velmora::ardour {

/// The words in which Ardour writes down times: they differ between its versions, so that Ardour
/// itself is asked for every number of samples that a session needs.
class TimeWords {
 public:
  explicit TimeWords(const ArdourPlan& plan);

  /// The numbers to ask for, rising.
  [[nodiscard]] const std::vector<std::int64_t>& Samples() const { return samples_; }
  /// Takes the word for the next of them. False if there is no next one.
  [[nodiscard]] bool Add(std::string word);
  [[nodiscard]] bool IsWhole() const { return words_.size() == samples_.size(); }
  /// `samples` must be one of Samples(), and IsWhole().
  [[nodiscard]] const std::string& Of(std::int64_t samples) const;
  /// A length at a position, as regions have it.
  [[nodiscard]] std::string Extent(std::int64_t length, std::int64_t position) const {
    return Of(length) + '@' + Of(position);
  }

 private:
  std::vector<std::int64_t> samples_;
  std::vector<std::string> words_;
};

/// What the script is to make, as it reads it (see make_session.lua).
/// @param folder where the session is made, absolute and new
/// @param name of the session, and of its file
[[nodiscard]] std::string JobText(const std::string& folder, const std::string& name,
                                  const ArdourPlan& plan, const TimeWords& times);

}  // namespace velmora::ardour
