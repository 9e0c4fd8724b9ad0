#include "server/Store/Trust.h"

#include "server/Complaint.h"
#include "server/Store/TrustFile.h"
#include "server/UserPlaces.h"
#include "support/OS/Paths.h"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

namespace quillstead::server {

namespace {

/// The directories of a colon-separated list. Those that do not exist are left out.
std::vector<std::string> listed(std::string_view list) {
  std::vector<std::string> directories;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(':'), list.size());
    const std::string path(list.substr(0, end));
    list.remove_prefix(std::min(list.size(), end + 1));
    if (!path.starts_with('/')) continue;
    if (auto canonical = OS::canonicalPath(path)) directories.push_back(std::move(*canonical));
  }
  return directories;
}

bool isDirectory(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// The project that is meant: a directory named like a store stands for its parent.
std::string projectOf(std::string directory) {
  const std::string ending = "/" + std::string(UserPlaces::storeName);
  if (directory.size() > ending.size() && directory.ends_with(ending)) {
    directory.resize(directory.size() - ending.size());
  }
  return directory;
}

Trust::Outcome outcomeOf(const TrustFile::Outcome& outcome, std::string directory) {
  if (const auto* failed = std::get_if<TrustFile::Unusable>(&outcome)) {
    return Trust::Refused{failed->reason};
  }
  const bool wasSo = std::get<TrustFile::Change>(outcome) == TrustFile::Change::none;
  return Trust::Changed{.directory = std::move(directory), .wasSo = wasSo};
}

}  // namespace

Trust Trust::read(const OS::Environment& environment) {
  Trust trust;
  auto file = TrustFile::read(environment);
  if (const auto* unusable = std::get_if<TrustFile::Unusable>(&file)) {
    complain(unusable->reason + ", so it trusts nothing");
  } else {
    for (std::string& line : std::get<TrustFile::Lines>(file)) {
      if (!line.starts_with('/')) continue;
      trust.entries_.push_back({.directory = std::move(line), .source = Entry::Source::file});
    }
  }
  for (std::string& path : listed(environment.value("QUILLSTEAD_TRUST").value_or(""))) {
    trust.entries_.push_back({.directory = std::move(path), .source = Entry::Source::environment});
  }
  return trust;
}

std::optional<std::string> Trust::coverOf(std::string_view path) const {
  for (const Entry& entry : entries_) {
    const bool isBelow = path.starts_with(UserPlaces::joined(entry.directory, ""));
    if (isBelow || path == entry.directory) return entry.directory;
  }
  return std::nullopt;
}

Trust::Outcome Trust::add(const OS::Environment& environment, const std::string& directory) {
  const auto canonical = OS::canonicalPath(directory);
  if (!canonical || !isDirectory(*canonical)) return Refused{directory + " is not a directory"};
  const std::string project = projectOf(*canonical);
  if (project.find_first_of("\r\n") != std::string::npos) {
    return Refused{directory + " cannot be a line of a file"};
  }
  return outcomeOf(TrustFile::add(environment, project), project);
}

Trust::Outcome Trust::revoke(const OS::Environment& environment, const std::string& directory) {
  const std::string project = projectOf(OS::canonicalPath(directory).value_or(directory));
  return outcomeOf(TrustFile::remove(environment, project), project);
}

}  // namespace quillstead::server
