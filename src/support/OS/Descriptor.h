#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace quillstead::OS {

/// Owns one file descriptor and closes it.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, none)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) {
      close();
      number_ = std::exchange(other.number_, none);
    }
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }

  [[nodiscard]] bool isOpen() const { return number_ != none; }
  [[nodiscard]] int number() const { return number_; }
  void close();

 private:
  static constexpr int none = -1;
  int number_ = none;
};

/// How one transfer of bytes went.
struct Transfer {
  enum class Result {
    moved,     ///< `count` bytes, more than none
    ended,     ///< end of input; for a write: nothing was taken
    notReady,  ///< a non-blocking descriptor has nothing, or no room, now
    failed,    ///< any other error
  };
  Result result;
  std::size_t count;
};

/// One `read` or `write`, tried again when a signal interrupts it.
Transfer read(int descriptor, char* buffer, std::size_t capacity);
Transfer write(int descriptor, std::string_view bytes);

/// Writes all of `bytes`, in one `write` where the system takes them at once; waits as long as a
/// non-blocking descriptor has no room. False when the end could not be written.
bool writeAll(int descriptor, std::string_view bytes);

/// Writes what a non-blocking descriptor takes of `bytes` now, and leaves the rest.
void writeNow(int descriptor, std::string_view bytes);

/// Writes `bytes`, which should be few, as far as the descriptor takes them without waiting, be it
/// a blocking one: others that write to the same pipe at the same moment are reckoned not to fill
/// it.
void writeIfRoom(int descriptor, std::string_view bytes);

/// Writes `text` and a line feed as `writeAll` does, without copying the text.
bool writeLine(int descriptor, std::string_view text);

/// The two ends of a pipe, closed on exec and never numbered 0 to 2, which belong to the standard
/// streams even while those are closed.
struct Pipe {
  Descriptor reading;
  Descriptor writing;
};
std::optional<Pipe> makePipe();

/// Opens `path` for appending, creating it with mode 0644 less the process's mask. The descriptor
/// is closed on exec, never numbered 0 to 2, and the call never waits (a FIFO nobody reads is
/// refused).
Descriptor openForAppending(const char* path);

/// For an end of a pipe of ours, which has no other flags to keep. False when it is not open.
bool makeNonBlocking(const Descriptor& descriptor);

}  // namespace quillstead::OS
