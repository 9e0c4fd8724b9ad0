#include "support/OS/Directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

namespace quillstead::OS {

namespace {

struct CloseListing {
  void operator()(DIR* listing) const { closedir(listing); }
};
using Listing = std::unique_ptr<DIR, CloseListing>;

/// Opens the directory anew, because listing moves a position that copies of a descriptor share.
Listing openListing(const Descriptor& directory) {
  const int number = openat(directory.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (number < 0) return nullptr;
  Listing listing(fdopendir(number));
  if (!listing) close(number);
  return listing;
}

bool mayBeFile(const dirent& entry) { return entry.d_type == DT_REG || entry.d_type == DT_UNKNOWN; }

bool isDirectory(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

Descriptor openDirectory(const std::string& path, Links links) {
  const int follow = links == Links::refused ? O_NOFOLLOW : 0;
  return Descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | follow));
}

bool forEachName(const Descriptor& directory, std::string_view suffix,
                 const std::function<void(const char* name)>& visit) {
  const Listing listing = openListing(directory);
  if (!listing) return false;
  errno = 0;
  while (const dirent* entry = readdir(listing.get())) {
    const char* const name = entry->d_name;
    if (mayBeFile(*entry) && std::string_view(name).ends_with(suffix)) visit(name);
    errno = 0;
  }
  return errno == 0;
}

bool makeDirectories(const std::string& path, mode_t mode) {
  if (isDirectory(path)) return true;
  for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
       slash = path.find('/', slash + 1)) {
    mkdir(path.substr(0, slash).c_str(), mode);  // whether it helped shows at the end
  }
  mkdir(path.c_str(), mode);
  return isDirectory(path);
}

Lock::Lock(const Descriptor& directory) : directory_(directory.number()) {
  while (flock(directory_, LOCK_EX) != 0 && errno == EINTR) {
  }
}

Lock::~Lock() { flock(directory_, LOCK_UN); }

}  // namespace quillstead::OS
