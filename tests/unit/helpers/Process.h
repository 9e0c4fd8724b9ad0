#pragma once

#include "support/OS/Environment.h"

#include <cstdio>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The surroundings of a process: its streams, its environment, its descriptors, its children.
namespace quillstead::unit {

/// The path of one of the programs in tests/children.
std::string child(std::string_view name);

/// The numbers of the descriptors that this process has open.
std::vector<int> openDescriptors();

/// How a piece of code ended that ran in a process of its own.
struct ForkedRun {
  int status;  ///< exit status, or the negated number of the signal that ended it
  std::string standardOutput;
  std::string standardError;
};

/// Runs `body` in a forked process, which then exits with status 0, with `input` on its standard
/// input. A body that does not come to an end is killed by SIGALRM; an exception that leaves it
/// ends the process. Expectations in `body` would be lost: let it print what it saw.
ForkedRun inForkedProcess(const std::function<void()>& body, std::string_view input = {});

/// Prints from a forked body, past every buffer.
void print(std::string_view text);

/// Catches what is written to a descriptor of this process for its lifetime.
class Captured {
 public:
  explicit Captured(int descriptor);
  Captured(const Captured&) = delete;
  Captured& operator=(const Captured&) = delete;
  ~Captured();

  /// What was written so far.
  [[nodiscard]] std::string text() const;

 private:
  int descriptor_;
  int before_;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
};

/// A variable of this process's environment for its lifetime; absent: not set.
class ScopedVariable {
 public:
  ScopedVariable(std::string name, const std::optional<std::string>& value);
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;
  ~ScopedVariable();

 private:
  std::string name_;
  std::optional<std::string> before_;
};

/// An environment made of "NAME=value" entries, for handing down.
class EnvironmentOf {
 public:
  EnvironmentOf(std::initializer_list<std::string> entries);
  EnvironmentOf(const EnvironmentOf&) = delete;
  EnvironmentOf& operator=(const EnvironmentOf&) = delete;
  ~EnvironmentOf() = default;

  operator OS::Environment() const { return OS::Environment(pointers_.data()); }

 private:
  std::vector<std::string> entries_;
  std::vector<const char*> pointers_;
};

}  // namespace quillstead::unit
