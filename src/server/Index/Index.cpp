#include "server/Index/Index.h"

#include "server/Index/IndexFile.h"
#include "server/Index/IndexQuestions.h"
#include "server/Index/IndexTables.h"
#include "server/Index/IndexUpdate.h"

namespace quillstead {

namespace {

using namespace std::chrono_literals;

/// How long one call waits for other servers' writing, and how long it goes on reading files.
constexpr std::chrono::milliseconds patienceWithOthers = 500ms;
constexpr std::chrono::milliseconds patienceWithFiles = 600ms;

constexpr std::size_t mostOfOneTitle = 100;

template <typename Answer>
using Question = std::optional<Answer> (*)(Database&, std::string_view, std::size_t);

/// All statements of the question see the same state, whatever other servers write meanwhile.
template <typename Answer>
std::optional<Answer> ask(Database& database, Question<Answer> question, std::string_view text,
                          std::size_t limit) {
  if (!database.run("BEGIN")) return std::nullopt;
  std::optional<Answer> answer = question(database, text, limit);
  database.rollBack();
  return answer;
}

}  // namespace

Index::Index(const Scope& scope, const OS::Environment& environment)
    : survey_(scope),
      path_(IndexFile::place(scope, environment)),
      database_(path_.empty() ? Database::inMemory() : Database::open(path_, patienceWithOthers)),
      inMemory_(path_.empty()) {
  if (bringUpToDate()) return;
  if (database_.trouble() == DatabaseTrouble::busy) {
    database_.setPatience(0ms);  // it answers as it was, or not at all; there was enough waiting
    return;
  }
  if (database_.trouble() == DatabaseTrouble::damaged && database_.empty() && bringUpToDate()) {
    return;
  }
  openInMemory();
}

std::vector<CardPlace> Index::search(std::string_view prompt, std::size_t limit) {
  return answered(&IndexQuestions::search, prompt, limit);
}

Titles Index::titles(std::size_t limit) { return answered(&IndexQuestions::titles, {}, limit); }

std::vector<CardPlace> Index::withTitle(std::string_view title) {
  return answered(&IndexQuestions::withTitle, title, mostOfOneTitle);
}

template <typename Answer>
Answer Index::answered(Question<Answer> question, std::string_view text, std::size_t limit) {
  if (auto answer = ask(database_, question, text, limit)) return std::move(*answer);
  if (database_.trouble() == DatabaseTrouble::damaged && database_.empty() && bringUpToDate()) {
    if (auto answer = ask(database_, question, text, limit)) return std::move(*answer);
  }
  if (!inMemory_) {
    openInMemory();
    if (auto answer = ask(database_, question, text, limit)) return std::move(*answer);
  }
  return {};
}

void Index::openInMemory() {
  inMemory_ = true;
  database_ = Database::inMemory();
  bringUpToDate();
}

bool Index::bringUpToDate() { return IndexUpdate::run(database_, survey_, patienceWithFiles); }

}  // namespace quillstead
