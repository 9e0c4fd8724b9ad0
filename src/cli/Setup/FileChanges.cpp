#include "cli/Setup/FileChanges.h"

#include "cli/Context.h"
#include "cli/Setup/ConfigFile.h"
#include "cli/Setup/Harnesses.h"
#include "cli/Setup/UnifiedDiff.h"
#include "support/OS/Directory.h"
#include "support/OS/File.h"

#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>
#include <variant>

namespace quillstead::cli {

namespace {

using Before = std::optional<std::string>;

EditOutcome edited(const Harnesses::Target& target, Direction direction, const Before& before) {
  if (direction == Direction::install) return target.install(before);
  if (!before) return Edited{.text = std::nullopt, .hadOurs = false};
  return target.uninstall(*before);
}

std::string_view outcomeOf(Direction direction, bool isChanged, bool hadOurs) {
  if (!isChanged) return "unchanged";
  if (direction == Direction::uninstall) return "removed";
  return hadOurs ? "updated" : "added";
}

std::string placeOf(const JSONC::Complaint& complaint) {
  return ":" + std::to_string(complaint.line) + ":" + std::to_string(complaint.column);
}

}  // namespace

std::vector<std::string> SetupOptions::chosen(const Context& context) const {
  std::vector<std::string> chosen =
      Harnesses::chosen(harnesses, context.places, context.environment);
  if (chosen.empty()) context.console.complain(Harnesses::noneIsThere);
  return chosen;
}

bool FileChanges::changeAll(const std::string& harness, const Programs& programs) {
  bool isAnyChanged = false;
  for (const auto& target : Harnesses::targets(harness, context_.places, programs)) {
    const Attempt last = change(target);
    isAnyChanged = isAnyChanged || last.result == Result::changed;
    complainOfRest(target, last.content);
  }
  return isAnyChanged;
}

FileChanges::Attempt FileChanges::change(const Harnesses::Target& target) {
  if (!isDryRun_) ConfigFile::removeLeftovers(target.path);
  for (;;) {
    Attempt last = attempt(target);
    if (last.result != Result::again) return last;
  }
}

FileChanges::Attempt FileChanges::attempt(const Harnesses::Target& target) {
  const auto read = ConfigFile::read(target.path);
  if (const auto* problem = std::get_if<ConfigFile::Problem>(&read)) {
    return {leaveAlone(target, "", problem->what), std::nullopt};
  }
  const auto& before = std::get<ConfigFile::Content>(read);
  const EditOutcome outcome = edited(target, direction_, before.bytes);
  if (const auto* complaint = std::get_if<JSONC::Complaint>(&outcome)) {
    return {leaveAlone(target, placeOf(*complaint), complaint->what), before.bytes};
  }
  const auto& edit = std::get<Edited>(outcome);
  const bool isChanged = edit.text != before.bytes;
  if (isChanged && before.isReadOnly()) {
    return {leaveAlone(target, "", "is read-only"), before.bytes};
  }
  const std::string_view word = outcomeOf(direction_, isChanged, edit.hadOurs);
  if (isChanged && !isDryRun_) {
    const Result result = write(target, before, edit, word);
    return {result, result == Result::changed ? edit.text : before.bytes};
  }
  tell(target, word);
  context_.console.print(unifiedDiff(target.path, before.bytes, edit.text));
  return {Result::notChanged, edit.text};
}

FileChanges::Result FileChanges::write(const Harnesses::Target& target,
                                       const ConfigFile::Content& before, const Edited& edit,
                                       std::string_view word) {
  if (!lock_.isOpen()) {
    if (!lock()) {
      return leaveAlone(target, "",
                        context_.places.stateDirectory + " cannot be created for a copy");
    }
    return Result::again;  // another run may have changed the file while this one waited
  }
  const std::string copies = context_.places.stateDirectory + "/backups";
  const bool isFirst = !edit.hadOurs || (edit.text && !ConfigFile::hasCopy(before, copies));
  if (before.bytes && isFirst) {
    auto copy = ConfigFile::keepCopy(before, copies);
    if (const auto* problem = std::get_if<ConfigFile::Problem>(&copy)) {
      return leaveAlone(target, "", "there can be no copy of it, which " + problem->what);
    }
    copies_.push_back(std::get<std::string>(std::move(copy)));
  }
  const auto written = ConfigFile::replace(before, edit.text);
  if (const auto* problem = std::get_if<ConfigFile::Problem>(&written)) {
    return leaveAlone(target, "", problem->what);
  }
  if (std::get<ConfigFile::Written>(written) != ConfigFile::Written::done) return Result::again;
  tell(target, word);
  return Result::changed;
}

void FileChanges::tellCopies() const {
  if (copies_.empty()) return;
  context_.console.print("\nCopies of the files as they were:\n");
  for (const std::string& copy : copies_) context_.console.print("  " + copy + "\n");
}

FileChanges::Result FileChanges::leaveAlone(const Harnesses::Target& target,
                                            const std::string& place, const std::string& what) {
  tell(target, "left alone");
  context_.console.complain(target.path + place + ": " + what);
  wasAnyLeftAlone_ = true;
  return Result::notChanged;
}

void FileChanges::tell(const Harnesses::Target& target, std::string_view outcome) {
  context_.console.print(std::string(target.harness) + "  " + target.path + "  " +
                         std::string(outcome) + "\n");
}

void FileChanges::complainOfRest(const Harnesses::Target& target,
                                 const std::optional<std::string>& content) {
  const auto complaint = target.rest && content ? target.rest(*content) : std::nullopt;
  if (!complaint) return;
  context_.console.complain(target.path + placeOf(*complaint) + ": " + complaint->what);
  wasAnyLeftAlone_ = true;
}

bool FileChanges::lock() {
  const std::string& directory = context_.places.stateDirectory;
  if (!OS::makeDirectories(directory, OS::FileMode::privateDirectory)) return false;
  lock_ = OS::openDirectory(directory, OS::Links::followed);
  if (!lock_.isOpen()) return false;
  int result = 0;
  do {
    result = flock(lock_.number(), LOCK_EX);
  } while (result != 0 && errno == EINTR);
  return true;  // a file system without locks is as good as being alone
}

}  // namespace quillstead::cli
