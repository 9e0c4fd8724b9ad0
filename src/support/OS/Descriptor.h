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

/// Writes all of `bytes`, in one `write` if the system takes them at once. Waits while a
/// non-blocking descriptor has no room. False when not all could be written.
bool writeAll(int descriptor, std::string_view bytes);

/// Writes as much of `bytes` as a non-blocking descriptor takes now.
void writeNow(int descriptor, std::string_view bytes);

/// Writes as much of `bytes`, which should be short, as the descriptor takes without waiting, even
/// if it is a blocking one. Assumes that no other process fills the same pipe at that moment.
void writeIfRoom(int descriptor, std::string_view bytes);

/// Writes `text` and a line feed as `writeAll` does, without copying the text.
bool writeLine(int descriptor, std::string_view text);

/// The two ends of a pipe. They are closed on exec, and never numbered 0 to 2, which belong to the
/// standard streams even if those are closed.
struct Pipe {
  Descriptor reading;
  Descriptor writing;
};
std::optional<Pipe> makePipe();

/// Opens `path` for appending, creating it with mode 0644 less the process's mask. The descriptor
/// is closed on exec and never numbered 0 to 2. The call never waits: a FIFO without a reader is
/// refused.
Descriptor openForAppending(const char* path);

/// For our own pipes only: other status flags are lost. False when the descriptor is not open.
bool makeNonBlocking(const Descriptor& descriptor);

}  // namespace quillstead::OS
