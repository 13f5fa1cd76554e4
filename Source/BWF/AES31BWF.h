#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "BWF/BwfRecords.h"
#include "BWF/KeptChunks.h"
#include "Base/FileAccess.h"

namespace velmora {

class HeaderReader;
class OutputFile;
struct ChunkPlace;

/// What CopyTo answers.
enum CopyStatus : std::int32_t {
  CopyDone = 0,
  CopyTargetNotCreated = 1,
  CopyFailed = 2,  ///< no memory, a read or write error, or too long; a short target stays
  CopyNotValid = 3,
};

/// One Broadcast Wave file, read or written.
///
/// A reading instance parses the header when it is made and holds no stream until audio is touched.
/// A writing instance is born open, its header written with final sizes; after CloseFile it can be
/// read like the other. An instance is used by one thread at a time.
class AES31BWF {
 public:
  /// Reads the header of a file. IsValid tells whether it is a wave file.
  explicit AES31BWF(const char* path);

  /// Reads the header of the file under this path, which is open already; not valid if it is null.
  AES31BWF(std::string path, FileStream stream);

  /// Creates a file, or empties the one that is there, and writes its header. The caller owes
  /// exactly the declared samples. If the file cannot be created, the instance is not valid and
  /// writes nothing.
  /// @param sampleRate frames per second
  /// @param bitDepth   bits per sample
  /// @param frames     sample frames that will be written
  AES31BWF(const char* path, std::uint32_t sampleRate, std::uint32_t channels,
           std::int32_t bitDepth, std::int32_t frames);

  /// The same in a file whose name is settled when it is created, as GetPath tells it. Whether the
  /// file is kept is left to the caller.
  AES31BWF(OutputFile& file, std::uint32_t sampleRate, std::uint32_t channels,
           std::int32_t bitDepth, std::int32_t frames);

  virtual ~AES31BWF();
  AES31BWF(const AES31BWF&) = delete;
  AES31BWF& operator=(const AES31BWF&) = delete;

  virtual void CloseFile();
  /// Opens the file for reading at its first sample; an open stream is moved there. One that does
  /// not move is closed: whatever was read from it would be of another place.
  virtual void OpenAtData();
  /// Writes one sample, nominally -1.0 to 1.0, truncated toward zero and not clipped.
  virtual void WriteSample(float value);
  virtual void DisableCache();
  /// One sample, or 0.0 outside the file and for formats other than integer PCM.
  virtual float GetSampleAt(std::int32_t frame, std::uint32_t channel);
  /// The sample at the stream's position; the stream must be open.
  virtual float ReadSample();
  virtual std::uint32_t GetChannels();
  virtual std::int32_t GetFrames();
  virtual std::uint32_t GetSampleRate();
  virtual std::uint32_t GetBitsPerSample();
  virtual const char* GetPath();
  /// A chunk that is not understood, by its place among these in the file; null out of range. It is
  /// read from the file when it is asked for the first time: see KeptChunks.
  virtual BwfChunk* GetChunk(std::int32_t index);
  /// How many of these the file holds.
  virtual std::size_t GetChunkCount();
  virtual BwfFormat* GetFormat();
  /// Null if the file has no bext chunk.
  virtual BwfBext* GetBext();
  virtual bool IsValid();
  /// Copies the file to `path`; `bitDepth` -1 or the file's own copies it byte for byte, any other
  /// converts the audio alone. Returns a CopyStatus.
  virtual std::int32_t CopyTo(const char* path, std::int32_t bitDepth);
  /// Fills this writing instance with its declared audio from `source`, from `firstFrame` on, the
  /// part that the source lacks being 0. False if the formats differ or a write fails.
  virtual bool CopyFrames(AES31BWF* source, std::int64_t firstFrame);
  /// Converts every sample from this stream's position on into the target's stream, what this file
  /// lacks being 0. `gain` is a linear factor, used only if `applyGain` is set.
  /// @return 0 done, 1 no memory, 2 a stream that is not open, a read or a write error
  virtual std::int32_t ConvertInto(AES31BWF* target, bool applyGain, double gain);

  /// CopyTo into a file whose name is settled when it is created. It is kept if anything came to
  /// stand in it. The copy itself is CopyTo's, with the name that the file has by then.
  [[nodiscard]] std::int32_t CopyInto(OutputFile& file, std::int32_t bitDepth);

  /// WriteSample for each of `count` values, in blocks.
  void WriteSamples(const float* values, std::size_t count);

  /// True once something could not be written, also if only closing showed it. The system log has
  /// been told path and cause.
  [[nodiscard]] bool WriteFailed() const { return writeFailed_; }

  /// Moves the open stream to a place in the file. False, and noted as a read error, if it stays
  /// where it was.
  bool SeekTo(std::int64_t place);

  /// The errno of what failed last in reading or seeking single samples, 0 for nothing; then it is
  /// forgotten. The end of the file is no error: what lies after it has its own rules.
  [[nodiscard]] int TakeReadError();
  /// The same, told to the system log. True if there was an error.
  bool LogTakenReadError();

  bool hasBext = false;
  BwfBext bext;
  bool hasFormat = false;
  BwfFormat format;
  bool hasData = false;
  std::int64_t dataOffset = 0;      ///< file offset of the first sample
  std::uint64_t frames = 0;         ///< sample frames in the data chunk
  FileStream stream;                ///< open file, or null
  std::int64_t riffEnd = 0;         ///< the RIFF size field plus 8; read instances only
  std::int64_t position = 0;        ///< what GetSampleAt takes for the stream's position
  std::int32_t bytesPerSample = 0;  ///< of one channel's sample in a frame
  std::string path;
  KeptChunks chunks;  ///< the chunks not understood, in file order

 private:
  bool Parse();
  void WalkChunks(HeaderReader& reader);
  void ReadFormatChunk(HeaderReader& reader);
  void ReadBextChunk(HeaderReader& reader, const ChunkPlace& chunk);
  void DeclareFrames(std::uint32_t sampleRate, std::uint32_t channels, std::int32_t bitDepth,
                     std::int32_t frameCount);
  void CreateIn(OutputFile& file);
  /// False if this or an earlier write failed.
  bool WriteBytes(const void* bytes, std::size_t count);
  bool Flush();
  void NoteWriteError();
  std::int32_t CopyBytes(OutputFile& file);
  std::int32_t CopyConverted(OutputFile& file, std::int32_t bitDepth);

  /// Lets a small file collect in memory, so that it goes to the disk in one write when it is
  /// closed.
  void CollectIfSmall(std::size_t bytes);

  OutputFile* handed_ = nullptr;       ///< the file of a CopyInto that is under way; not owned
  std::unique_ptr<char[]> collected_;  ///< the stream's buffer, if it is not the stream's own
  std::string codingHistory_;
  std::uint32_t dataSize_ = 0;
  bool writes_ = false;  ///< the stream that is open is written to
  bool writeFailed_ = false;
  int readError_ = 0;
};

}  // namespace velmora
