#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ADL/AES31Event.h"
#include "ADL/AES31Section.h"
#include "ADL/AES31SourceFile.h"
#include "ADL/LineMap.h"
#include "ADL/LoadDiagnostic.h"
#include "ADL/LoadFailure.h"
#include "ADL/ProjectConstants.h"
#include "BWF/AES31BWF.h"

namespace velmora {

/// A loaded ADL project (AES31-3). Constructing it does the whole load; it owns the file's bytes,
/// to which every text in it points, and the wave files of its sources.
///
/// Oddities of a file do not stop the load. `diagnostics` has them, and standard error a line each.
class AES31Project {
 public:
  /// Loads the file at `path` and looks for its audio below `searchFolder`, or below the file's own
  /// folder if that is null. `*ok` tells the outcome and `failure` why; an object that failed is
  /// good only for deletion.
  AES31Project(const char* path, const char* searchFolder, bool* ok);
  virtual ~AES31Project();
  AES31Project(const AES31Project&) = delete;
  AES31Project& operator=(const AES31Project&) = delete;

  // Positions and ids out of range give null or 0.

  /// `sourceFile` of the event at a position of the list.
  virtual AES31BWF* GetEventFile(std::size_t position);
  /// The raw text of a constant, null if the file gave none.
  virtual const char* GetConstant(std::uint32_t id);
  virtual std::int32_t GetConstantInt(std::uint32_t id);
  virtual double GetConstantFloat(std::uint32_t id);
  /// The event at a position of the list, writable in place.
  virtual AES31Event* GetEvent(std::int32_t position);
  virtual std::int32_t GetEventCount();

  /// Gives each event its source's file, first sample and length.
  virtual void LinkEvents();
  /// Finds the audio file of each source below `folder` and opens it. A file that a source held
  /// before is deleted with the project, since events may still point to it.
  virtual void ResolveSources();

  // Two sets of readers. The first reads without any check and cannot fail; the load runs the
  // second, in which false fails the load and sets `failure`.
  virtual void ReadSourceIndex(const AES31Section& section);
  virtual void ReadEventList(const AES31Section& section);
  virtual void ReadSections();
  virtual bool CheckSourceIndex(const AES31Section& section);
  virtual bool CheckEventList(const AES31Section& section);
  virtual bool CheckSections();

  virtual bool IsTimestamp(const char* text);
  /// Prints constants, sources and events to standard error.
  virtual void DumpProject();

  /// Raw values, by id; null if the file gave none.
  std::array<const char*, kProjectConstants.size()> constants{};
  std::map<std::int32_t, AES31SourceFile> sourceFiles;  ///< by (Index) number
  std::vector<AES31Event> events;                       ///< of each EVENT_LIST, by rising number
  std::vector<AES31Section> sections;                   ///< the scanned tree
  std::vector<std::vector<AES31Section>> refLists;      ///< one for each <REF> block
  std::vector<const char*> comments;                    ///< from every level, in file order
  char* buffer = nullptr;                               ///< first byte of the file block
  char* bufferEnd = nullptr;           ///< one past the file's last byte, where a spare NUL stands
  std::string folder;                  ///< in which audio is looked for, without a slash at its end
  std::optional<LoadFailure> failure;  ///< set when `ok` is false
  std::vector<LoadDiagnostic> diagnostics;  ///< oddities that did not stop the load, in file order

 private:
  enum class Checks { Off, On };

  bool LoadBlock(const char* path);
  bool WalkSections(Checks checks);
  bool ReadConstants(const AES31Section& section);
  bool WalkSourceIndex(const AES31Section& section, Checks checks);
  bool WalkEventList(const AES31Section& section, Checks checks);
  /// Each notes the failure and answers false.
  bool FailAt(LoadFailureCode code, const AES31Section& section, const char* label,
              std::string reason);
  bool FailWhole(LoadFailureCode code, std::string reason);
  /// Takes a source's file away, to be deleted with the project.
  void Retire(AES31SourceFile& source);
  template <class Visit>
  void ForEachFile(const Visit& visit);
  void DeleteFiles();
  /// Notes an oddity and tells it on standard error.
  void Tolerate(LoadDiagnosticCode code, const char* label, std::string text);
  [[nodiscard]] std::int64_t LineOf(const char* label) const;

  std::unique_ptr<char[]> block_;
  LineMap lines_;
  /// Files that sources held before they were read or resolved anew. Events may still point to
  /// them.
  std::vector<AES31BWF*> formerFiles_;
};

}  // namespace velmora
