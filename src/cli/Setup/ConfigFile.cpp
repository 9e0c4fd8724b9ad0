#include "cli/Setup/ConfigFile.h"

#include "support/OS/AtomicFile.h"
#include "support/OS/Descriptor.h"
#include "support/OS/Directory.h"
#include "support/OS/File.h"
#include "support/OS/Paths.h"
#include "support/OS/Random.h"
#include "support/OS/SignalMask.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace quillstead::cli::ConfigFile {

namespace {

constexpr std::size_t largest = std::size_t{32} << 20U;  // bytes; far more than settings take
constexpr std::string_view temporaryPrefix = ".quillstead-new-";
constexpr std::string_view temporarySuffix = ".tmp";

std::string directoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

Problem problem(std::string_view what, int error) {
  return {std::string(what) + ": " + std::strerror(error)};
}

Problem problem(OS::NoContent reason) {
  switch (reason) {
    case OS::NoContent::notAFile:
      return {"is not a file"};
    case OS::NoContent::tooLarge:
      return {"is larger than settings are"};
    case OS::NoContent::missing:
    case OS::NoContent::symbolicLink:
    case OS::NoContent::unreadable:
      break;
  }
  return {"cannot be read"};
}

/// The file's real path; absent when the path is a link that leads nowhere.
std::optional<std::string> realPath(const std::string& path) {
  if (auto real = OS::canonicalPath(path)) return real;
  struct stat status {};
  if (lstat(path.c_str(), &status) == 0) return std::nullopt;
  const auto directory = OS::canonicalPath(directoryOf(path));
  return directory ? *directory + (directory->ends_with('/') ? "" : "/") + nameOf(path) : path;
}

std::variant<std::string, OS::NoContent> bytesOf(const std::string& path) {
  const OS::Descriptor directory = OS::openDirectory(directoryOf(path), OS::Links::followed);
  if (!directory.isOpen()) {
    return errno == ENOENT ? OS::NoContent::missing : OS::NoContent::unreadable;
  }
  auto content = OS::readFile(directory, nameOf(path), largest);
  if (const auto* none = std::get_if<OS::NoContent>(&content)) return *none;
  return std::move(std::get<OS::FileContent>(content).bytes);
}

/// True when the file has not changed since it was read.
bool isAsItWas(const Content& before) {
  const auto now = bytesOf(before.path);
  if (const auto* none = std::get_if<OS::NoContent>(&now)) {
    return !before.bytes && *none == OS::NoContent::missing;
  }
  return std::get<std::string>(now) == before.bytes;
}

/// A new file that disappears unless it gets its final name. Where the system supports it, it has
/// no name until then.
class TemporaryFile {
 public:
  explicit TemporaryFile(const OS::Descriptor& directory) : directory_(directory) {
    name_ = std::string(temporaryPrefix) + std::to_string(getpid()) + '-' +
            std::to_string(OS::randomNumber()) + std::string(temporarySuffix);
    file_ = OS::NamelessFile::create(directory);
    if (file_.isOpen()) return;
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
    file_ =
        OS::Descriptor(openat(directory.number(), name_.c_str(), flags, OS::FileMode::privateFile));
    isNamed_ = file_.isOpen();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (isNamed_) unlinkat(directory_.number(), name_.c_str(), 0);
  }

  /// False, with errno set, on failure. `like`: the file whose mode and owner it gets; may be null.
  bool write(std::string_view bytes, const struct stat* like) {
    if (!file_.isOpen() || !OS::writeAll(file_.number(), bytes)) return false;
    if (like != nullptr) {
      const bool isOthers = like->st_uid != geteuid() || like->st_gid != getegid();
      if (isOthers && fchown(file_.number(), like->st_uid, like->st_gid) != 0) return false;
      if (fchmod(file_.number(), like->st_mode & 07777U) != 0) return false;
    }
    return fsync(file_.number()) == 0;
  }

  /// Returns 0 or the error number. An existing file is replaced only when `isReplacing`.
  int rename(const std::string& name, bool isReplacing) {
    int error = 0;
    if (!isNamed_) {
      error = OS::NamelessFile::giveName(file_, directory_, (isReplacing ? name_ : name).c_str());
      if (error != 0 || !isReplacing) return error;
      isNamed_ = true;  // for an instant: no system call replaces a file by one without a name
    }
    if (!isReplacing) {
      error = OS::renameExclusively(directory_, name_.c_str(), name.c_str());
    } else if (renameat(directory_.number(), name_.c_str(), directory_.number(), name.c_str()) !=
               0) {
      error = errno;
    }
    isNamed_ = error != 0;
    return error;
  }

 private:
  const OS::Descriptor& directory_;
  std::string name_;
  OS::Descriptor file_;
  bool isNamed_ = false;  ///< and so has to be removed
};

std::variant<Written, Problem> write(const OS::Descriptor& directory, const Content& before,
                                     const std::string& bytes) {
  TemporaryFile file(directory);
  if (!file.write(bytes, before.bytes ? &before.status : nullptr)) {
    return problem("cannot be written", errno);
  }
  if (!isAsItWas(before)) return Written::changedMeanwhile;
  const int error = file.rename(nameOf(before.path), before.bytes.has_value());
  if (error == EEXIST) return Written::changedMeanwhile;
  if (error != 0) return problem("cannot be replaced", error);
  fsync(directory.number());  // the file stands either way; this makes its name durable
  return Written::done;
}

std::variant<Written, Problem> removed(const Content& before) {
  if (!isAsItWas(before)) return Written::changedMeanwhile;
  if (unlink(before.path.c_str()) != 0) return problem("cannot be removed", errno);
  return Written::done;
}

/// The process id in a name of ours.
std::optional<pid_t> writerOf(std::string_view name) {
  if (!name.starts_with(temporaryPrefix)) return std::nullopt;
  name.remove_prefix(temporaryPrefix.size());
  pid_t process = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
  if (error != std::errc() || *end != '-' || process <= 0) return std::nullopt;
  return process;
}

/// A file's path as a name: "%home%me%.claude%settings.json".
std::string flattened(std::string_view path) {
  constexpr std::size_t longest = 200;  // bytes; a name may have 255
  std::string name(path.size() > longest ? path.substr(path.size() - longest) : path);
  for (char& byte : name) {
    if (byte == '/') byte = '%';
  }
  return name;
}

}  // namespace

std::variant<Content, Problem> read(const std::string& path) {
  const auto real = realPath(path);
  if (!real) return Problem{"is a link that leads nowhere"};
  Content content{.path = *real, .bytes = std::nullopt, .status = {}};
  auto bytes = bytesOf(*real);
  if (const auto* none = std::get_if<OS::NoContent>(&bytes)) {
    if (*none == OS::NoContent::missing) return content;
    return problem(*none);
  }
  if (stat(real->c_str(), &content.status) != 0) return problem("cannot be read", errno);
  content.bytes = std::move(std::get<std::string>(bytes));
  return content;
}

std::optional<std::string> textOf(const std::string& path) {
  auto content = read(path);
  auto* const taken = std::get_if<Content>(&content);
  return taken != nullptr ? std::move(taken->bytes) : std::nullopt;
}

std::variant<Written, Problem> replace(const Content& before,
                                       const std::optional<std::string>& bytes) {
  constexpr std::array signals{SIGINT, SIGTERM, SIGHUP};  // they wait until the file is whole
  const OS::SignalMask mask(OS::SignalMask::Change::block, signals);
  if (!bytes) return removed(before);
  const std::string parent = directoryOf(before.path);
  if (!OS::makeDirectories(parent, OS::FileMode::privateDirectory)) {
    return problem("has no directory, and none can be made", errno);
  }
  const OS::Descriptor directory = OS::openDirectory(parent, OS::Links::followed);
  if (!directory.isOpen()) return problem("has a directory that cannot be opened", errno);
  return write(directory, before, *bytes);
}

std::variant<std::string, Problem> keepCopy(const Content& content, const std::string& directory) {
  const std::string base = directory + "/" + flattened(content.path);
  constexpr int most = 1000;
  std::string path = base;
  for (int number = 2; number <= most; ++number) {
    auto there = read(path);
    const auto* copy = std::get_if<Content>(&there);
    if (copy != nullptr && copy->bytes == content.bytes) return path;
    if (copy != nullptr && !copy->bytes) {
      const auto written = replace(*copy, content.bytes);
      if (const auto* failure = std::get_if<Problem>(&written)) return *failure;
      if (std::get<Written>(written) == Written::done) return path;
      continue;
    }
    path = base + "." + std::to_string(number);
  }
  return Problem{"cannot be copied to " + directory};
}

bool hasCopy(const Content& content, const std::string& directory) {
  const std::string path = directory + "/" + flattened(content.path);
  return access(path.c_str(), F_OK) == 0;
}

void removeLeftovers(const std::string& path) {
  const auto real = realPath(path);
  if (!real) return;
  const OS::Descriptor directory = OS::openDirectory(directoryOf(*real), OS::Links::followed);
  if (!directory.isOpen()) return;
  std::vector<std::string> leftovers;
  OS::forEachName(directory, temporarySuffix, [&](const char* name) {
    const auto writer = writerOf(name);
    if (writer && kill(*writer, 0) != 0 && errno == ESRCH) leftovers.emplace_back(name);
  });
  for (const std::string& name : leftovers) unlinkat(directory.number(), name.c_str(), 0);
}

}  // namespace quillstead::cli::ConfigFile
