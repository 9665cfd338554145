// The tarnwick-server program as an operator runs it: its first output
// line, its signals, its exit statuses, and an import killed midway.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "ServerFixture.h"

extern char** environ;

namespace tarnwick::server::testing {
namespace {

// The program running with its standard output on a pipe and its standard
// error in a file.
class Program {
 public:
  Program(std::vector<std::string> args, const std::filesystem::path& errors) {
    args.insert(args.begin(), TARNWICK_SERVER_PROGRAM);
    int out[2];
    EXPECT_EQ(pipe(out), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, out[0]);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    std::vector<char*> argv;
    for (auto& arg : args) argv.push_back(arg.data());
    argv.push_back(nullptr);
    EXPECT_EQ(posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    out_ = out[0];
  }
  ~Program() {
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      Wait();
    }
    close(out_);
  }

  // The next line of standard output, or "" after ten seconds or at its end.
  std::string ReadLine() {
    while (buffered_.find('\n') == std::string::npos) {
      pollfd ready{out_, POLLIN, 0};
      char chunk[4096];
      if (poll(&ready, 1, 10000) <= 0) return {};
      const ssize_t got = read(out_, chunk, sizeof chunk);
      if (got <= 0) return std::exchange(buffered_, std::string());
      buffered_.append(chunk, static_cast<std::size_t>(got));
    }
    const auto newline = buffered_.find('\n');
    std::string line = buffered_.substr(0, newline);
    buffered_.erase(0, newline + 1);
    return line;
  }
  std::string ReadAll() {
    std::string all;
    for (std::string line; !(line = ReadLine()).empty();) all += line + "\n";
    return all;
  }
  void Signal(int signal) { kill(pid_, signal); }
  // The exit status, or 128 + the signal that ended it.
  int Wait() {
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

 private:
  pid_t pid_ = -1;
  int out_ = -1;
  std::string buffered_;
};

std::string ReadWhole(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

class CliTest : public ::testing::Test {
 protected:
  struct Outcome {
    int status;
    std::string out;
    std::string err;
  };
  Outcome Run(const std::vector<std::string>& args) {
    Program program(args, errors);
    std::string out = program.ReadAll();
    const int status = program.Wait();
    return {status, out, ReadWhole(errors)};
  }

  tarnwick::testing::TempDir dir;
  std::filesystem::path errors = dir / "stderr.txt";
  std::string database = (dir / "server.db").string();
};

TEST_F(CliTest, ServeAnnouncesItsAddressFirstReloadsOnHangUpAndStopsOnTerm) {
  std::filesystem::create_directories(dir / "data");
  Program server({"serve", "--listen", "127.0.0.1:0", "--db", database, "--data", (dir / "data").string()}, errors);
  const std::string address = server.ReadLine();
  ASSERT_TRUE(std::regex_match(address, std::regex("http://127\\.0\\.0\\.1:[0-9]+"))) << address;
  const std::string question = address + "/check_url/http://late.example";
  EXPECT_EQ(HttpGet(question).status, 200);

  ImportLines(database, {"late.example"});
  server.Signal(SIGHUP);
  EXPECT_TRUE(WaitForStatus(question, 403));
  server.Signal(SIGTERM);
  EXPECT_EQ(server.Wait(), 0);
  const std::string log = ReadWhole(errors);
  EXPECT_NE(log.find("SIGHUP: reloading the feeds"), std::string::npos) << log;
  EXPECT_NE(log.find("stopped"), std::string::npos) << log;
}

TEST_F(CliTest, ImportCountsEveryRowAndSaysWhatItRejected) {
  const std::string feed = (dir / "feed.txt").string();
  WriteText(feed, "http://a.example/1\nb.example\nhttp://bad host/\n");
  const Outcome first = Run({"import", "--db", database, "--format", "lines", feed});
  EXPECT_EQ(first.status, 1);
  EXPECT_NE(first.out.find("imported " + feed + ": 2 added, 0 already known, 1 rejected"), std::string::npos)
      << first.out;
  EXPECT_NE(first.err.find(feed + ": line 3: rejected: URL contains white space or control characters"),
            std::string::npos)
      << first.err;
  EXPECT_NE(Run({"import", "--db", database, "--format", "lines", feed}).out.find("0 added, 2 already known"),
            std::string::npos);

  WriteText(feed, "http://c.example/1\n");
  EXPECT_EQ(Run({"import", "--db", database, "--format", "openphish", feed}).status, 0);
  EXPECT_EQ(Run({"import", "--db", database, "--format", "csv", feed}).status, 2);
  EXPECT_EQ(Run({"import", "--db", database, "--format", "lines", (dir / "missing.txt").string()}).status, 2);
  EXPECT_EQ(Run({"import", "--db", database, feed}).status, 2);
  EXPECT_EQ(Run({"import", "--db", (dir / "no" / "such" / "dir.db").string(), "--format", "lines", feed}).status, 2);
}

TEST_F(CliTest, AnImportKilledMidwayKeepsEveryRowItReportedCommitted) {
  const std::string feed = (dir / "big.txt").string();
  std::string lines;
  for (int i = 0; i < 100000; ++i)
    lines += "http://host" + std::to_string(i % 5000) + ".example/p" + std::to_string(i) + "\n";
  WriteText(feed, lines);
  Program import({"import", "--db", database, "--format", "openphish", "--batch", "500", feed}, errors);
  const std::string line = import.ReadLine();
  std::smatch reported;
  ASSERT_TRUE(std::regex_search(line, reported, std::regex("^committed: ([0-9]+) added"))) << line;
  import.Signal(SIGKILL);
  import.Wait();

  struct Count final : IndexSource {
    void PhishingSite(std::string_view) override {}
    void PhishingPage(std::string_view, std::string_view) override { ++pages; }
    void PhishingHostAddress(std::uint32_t, std::string_view) override {}
    std::size_t pages = 0;
  } stored;
  OpenSqliteStorage(database)->LoadIndex(stored);
  EXPECT_GE(stored.pages, std::stoul(reported[1]));
}

TEST_F(CliTest, ReportsListsWhatPeopleSent) {
  Report report;
  report.kind = "mistake";
  report.url = "http://good.example/";
  report.reason = "My bank's site";
  OpenSqliteStorage(database)->AddReport(report);
  const Outcome listed = Run({"reports", "--db", database});
  EXPECT_EQ(listed.status, 0);
  EXPECT_NE(listed.out.find("#1 mistake, "), std::string::npos) << listed.out;
  EXPECT_NE(listed.out.find("  url: http://good.example/\n  reason: My bank's site\n"), std::string::npos)
      << listed.out;
  EXPECT_EQ(Run({"reports", "--db", (dir / "none.db").string()}).status, 2);
}

TEST_F(CliTest, ReportsOnlyReadsTheDatabaseAndEscapesWhatPeopleSent) {
  // A database as an older server left it: only the reports, in rollback
  // journal mode. Listing them must change nothing in it.
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(database.c_str(), &db), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(db,
                         "CREATE TABLE reports(id INTEGER PRIMARY KEY, created INTEGER NOT NULL, kind TEXT NOT NULL, "
                         "url TEXT NOT NULL, name TEXT NOT NULL, email TEXT NOT NULL, reason TEXT NOT NULL, "
                         "user_agent TEXT NOT NULL, client_address TEXT NOT NULL);"
                         "INSERT INTO reports VALUES(1, 0, 'bug', '', 'Mallory', '', "
                         "'fine\r\n#2 phishing, forged\x1B[2J\x1B]0;owned\x07', 'agent', '192.0.2.1');",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(db);
  const std::string before = ReadWhole(database);

  const Outcome listed = Run({"reports", "--db", database});
  EXPECT_EQ(listed.status, 0) << listed.err;
  EXPECT_NE(listed.out.find("  reason: fine\\r\\n#2 phishing, forged\\x1B[2J\\x1B]0;owned\\x07\n"), std::string::npos)
      << listed.out;
  EXPECT_EQ(listed.out.find_first_of("\r\x1B\x07"), std::string::npos) << listed.out;
  EXPECT_EQ(ReadWhole(database), before);
  EXPECT_FALSE(std::filesystem::exists(database + "-wal"));
}

TEST_F(CliTest, BadCommandLinesAreErrors) {
  EXPECT_EQ(Run({"serve", "--listen", "localhost"}).status, 2);
  EXPECT_EQ(Run({"serve", "--listen", "127.0.0.1:0", "--threads", "4"}).status, 2);
  const Outcome unwritable =
      Run({"serve", "--listen", "127.0.0.1:0", "--db", (dir / "no" / "x.db").string(), "--data", dir.path().string()});
  EXPECT_EQ(unwritable.status, 2);
  EXPECT_NE(unwritable.err.find("cannot open"), std::string::npos) << unwritable.err;
  for (const char* rows : {"0", "1000001", "99999999999999", "1e3"}) {
    const Outcome absurd = Run({"import", "--db", database, "--format", "lines", "--batch", rows, "-"});
    EXPECT_EQ(absurd.status, 2) << rows;
    EXPECT_NE(absurd.err.find("--batch takes a number of rows from 1 to 1000000, not '" + std::string(rows) + "'"),
              std::string::npos)
        << absurd.err;
  }
  EXPECT_EQ(Run({"unknown"}).status, 2);
  EXPECT_EQ(Run({"--help"}).status, 0);
}

TEST_F(CliTest, AWrongRiskConfigurationStopsTheServerWithItsLine) {
  const std::string data = (dir / "data").string();
  const std::vector<std::string> serve = {"serve", "--listen", "127.0.0.1:0", "--db", database, "--data", data};
  WriteText(dir / "data" / "server" / "risk.conf", "base = 1\nbrand_words = 3\n");
  Outcome outcome = Run(serve);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.err.find("risk.conf, line 2: unknown key 'brand_words'"), std::string::npos) << outcome.err;

  WriteText(dir / "data" / "server" / "risk.conf", "popularity_list = top.csv\n");
  outcome = Run(serve);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.err.find("cannot read the popularity list"), std::string::npos) << outcome.err;
}

}  // namespace
}  // namespace tarnwick::server::testing
