#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Field/FieldProject.h"
#include "Prepare/Stamps.h"

namespace velmora::prepare {

/// What becomes of a project's values in the prepared text: safe texts, and times at the prepared
/// project's rates.
class ValueTexts {
 public:
  using Values = std::vector<std::string>;

  /// @param project must outlive this
  ValueTexts(const field::Project& project, const StampForm& form)
      : project_(project), form_(form) {}

  [[nodiscard]] std::string Text(const field::Value& value) const;
  /// The same, or the sign for "not given".
  [[nodiscard]] std::string TextOr(const field::Value& value) const;

  [[nodiscard]] Values ValuesOf(const field::Entry& entry) const;
  /// The same with each time at the prepared rates, filled up to so many values.
  [[nodiscard]] Values StampedValuesOf(const field::Entry& entry, std::size_t fewest) const;
  /// The value of a constant. A text of several words without quotation marks gets them: the system
  /// takes the first value alone.
  [[nodiscard]] Values ConstantValues(const field::Entry& entry, bool hasTimes) const;
  /// The rate of the timestamps, in place of another one that the header gives. It may stand in any
  /// section.
  [[nodiscard]] std::optional<std::string> OtherRate(const field::Entry& entry) const;

  /// A value as a time in samples at the prepared rate; none if it is no time.
  [[nodiscard]] std::optional<std::int64_t> TimeOf(const field::Value& value) const;
  /// A timestamp, or the sign for "not given" where none can hold the samples.
  [[nodiscard]] std::string Stamp(std::int64_t samples) const;
  /// The length of a fade; none where no timestamp can hold it.
  [[nodiscard]] std::optional<std::string> FadeLength(std::int64_t samples) const;

 private:
  [[nodiscard]] bool IsAsPrepared(const field::Value& value) const;

  const field::Project& project_;
  StampForm form_;
};

}  // namespace velmora::prepare
