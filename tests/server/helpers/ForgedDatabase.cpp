#include "server/helpers/ForgedDatabase.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace quillstead::server::test {

void forge(const std::string& path, const char* statements) {
  constexpr int patience = 10'000;  // milliseconds
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
  sqlite3_busy_timeout(database, patience);
  EXPECT_EQ(sqlite3_exec(database, statements, nullptr, nullptr, nullptr), SQLITE_OK)
      << statements << ": " << sqlite3_errmsg(database);
  sqlite3_close(database);
}

}  // namespace quillstead::server::test
