#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Media/Conversion.h"
#include "Media/ConversionPlan.h"
#include "Media/WaveWriter.h"

namespace velmora::media {

inline constexpr std::int32_t kAllChannels = -1;

/// The new files of a conversion, filled side by side. What is not finished is gone with it.
class Outputs {
 public:
  Outputs(const std::string& source, const std::vector<ConversionTarget>& targets, const Plan& plan,
          const ConversionProgress& progress)
      : source_(source), targets_(targets), plan_(plan), progress_(progress) {}

  /// @param channels of the source
  [[nodiscard]] bool Create(const std::vector<std::uint8_t>& bext, std::int32_t channels);

  /// Appends frames at the left end of 32 bits. False if it failed or was cancelled.
  /// @param places each target's channel among those of `frames`; kAllChannels: all
  [[nodiscard]] bool Write(std::span<const std::int32_t> frames, std::int32_t channels,
                           const std::vector<std::int32_t>& places);

  /// Appends to one file samples that are in their final form.
  [[nodiscard]] bool WriteBytes(std::size_t file, std::span<const std::uint8_t> bytes);

  /// Asks whether to go on.
  [[nodiscard]] bool GoesOn();

  /// All files stay, or none.
  void Finish(std::int32_t channels);

  /// Notes what is wrong with the source, and answers false.
  bool Blame(const std::string& why);

  [[nodiscard]] ConversionResult& Result() { return result_; }

 private:
  const std::string& source_;
  const std::vector<ConversionTarget>& targets_;
  const Plan& plan_;
  const ConversionProgress& progress_;
  std::vector<std::unique_ptr<NewFile>> files_;
  std::vector<std::uint8_t> bytes_;
  std::int64_t bytesDone_ = 0;
  ConversionResult result_;
};

}  // namespace velmora::media
