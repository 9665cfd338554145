// The SQLite backend: one database file in WAL mode, so that the server
// reads while an import writes. Every change is one transaction committed
// with a full sync; counts are only reported for committed rows.
#include <sqlite3.h>

#include <ctime>

#include "server/Storage.h"

namespace tarnwick::server {
namespace {

constexpr const char* kSchema = R"sql(
CREATE TABLE IF NOT EXISTS phish_pages(
  id INTEGER PRIMARY KEY,
  site_url TEXT NOT NULL UNIQUE,
  host TEXT NOT NULL,
  source TEXT NOT NULL,
  target TEXT NOT NULL,
  added INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS phish_sites(
  host TEXT PRIMARY KEY,
  source TEXT NOT NULL,
  target TEXT NOT NULL,
  added INTEGER NOT NULL) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS host_addresses(
  address INTEGER NOT NULL,
  host TEXT NOT NULL,
  PRIMARY KEY(address, host)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS seen_hosts(host TEXT PRIMARY KEY) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS reports(
  id INTEGER PRIMARY KEY,
  created INTEGER NOT NULL,
  kind TEXT NOT NULL,
  url TEXT NOT NULL,
  name TEXT NOT NULL,
  email TEXT NOT NULL,
  reason TEXT NOT NULL,
  user_agent TEXT NOT NULL,
  client_address TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS meta(key TEXT PRIMARY KEY, value INTEGER NOT NULL) WITHOUT ROWID;
INSERT OR IGNORE INTO meta VALUES('feed_version', 0);
)sql";

class Statement {
 public:
  Statement(sqlite3* db, const char* sql) : db_(db) {
    if (sqlite3_prepare_v3(db, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement_, nullptr) != SQLITE_OK) {
      throw StorageError(std::string("cannot prepare a statement: ") + sqlite3_errmsg(db));
    }
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  Statement& Bind(int index, std::string_view text) {
    sqlite3_bind_text(statement_, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
    return *this;
  }
  Statement& Bind(int index, std::int64_t number) {
    sqlite3_bind_int64(statement_, index, number);
    return *this;
  }
  // Runs a statement that returns no rows; true when it changed a row.
  bool Run() {
    const int result = sqlite3_step(statement_);
    sqlite3_reset(statement_);
    if (result != SQLITE_DONE) throw StorageError(std::string("cannot write: ") + sqlite3_errmsg(db_));
    return sqlite3_changes(db_) > 0;
  }
  // Steps through the rows; false at the end.
  bool Next() {
    const int result = sqlite3_step(statement_);
    if (result == SQLITE_ROW) return true;
    sqlite3_reset(statement_);
    if (result != SQLITE_DONE) throw StorageError(std::string("cannot read: ") + sqlite3_errmsg(db_));
    return false;
  }
  std::string_view Text(int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return text == nullptr ? std::string_view()
                           : std::string_view(text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)));
  }
  std::int64_t Number(int column) { return sqlite3_column_int64(statement_, column); }
  void Reset() { sqlite3_reset(statement_); }

 private:
  sqlite3* db_;
  sqlite3_stmt* statement_ = nullptr;
};

// "file:PATH?PARAMETERS", the path's "%", "?" and "#" escaped.
std::string FileUri(const std::filesystem::path& file, std::string_view parameters) {
  std::string uri = "file:";
  for (const char c : file.string()) {
    if (c == '%') {
      uri += "%25";
    } else if (c == '?') {
      uri += "%3f";
    } else if (c == '#') {
      uri += "%23";
    } else {
      uri += c;
    }
  }
  return uri + "?" + std::string(parameters);
}

class Connection {
 public:
  // `flags`: SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, or SQLITE_OPEN_READONLY;
  // `parameters` ("immutable=1") are passed in a URI file name.
  Connection(const std::filesystem::path& file, int flags, std::string_view parameters = {}) {
    const int result = parameters.empty()
                           ? sqlite3_open_v2(file.c_str(), &db_, flags, nullptr)
                           : sqlite3_open_v2(FileUri(file, parameters).c_str(), &db_, flags | SQLITE_OPEN_URI, nullptr);
    if (result != SQLITE_OK) {
      const std::string message = db_ != nullptr ? sqlite3_errmsg(db_) : sqlite3_errstr(result);
      sqlite3_close(db_);
      throw StorageError("cannot open " + file.string() + ": " + message);
    }
    sqlite3_busy_timeout(db_, 10000);
  }
  ~Connection() { sqlite3_close(db_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void Execute(const char* sql) {
    char* message = nullptr;
    if (sqlite3_exec(db_, sql, nullptr, nullptr, &message) != SQLITE_OK) {
      const std::string text = message != nullptr ? message : sqlite3_errmsg(db_);
      sqlite3_free(message);
      throw StorageError(text);
    }
  }
  sqlite3* get() const { return db_; }

  // True when the file this connection opened is no longer at its path
  // (deleted, or another file renamed over it).
  bool Moved() const {
    int moved = 0;
    return sqlite3_file_control(db_, "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved != 0;
  }

 private:
  sqlite3* db_ = nullptr;
};

// BEGIN ... COMMIT, rolled back when left by an exception.
class Transaction {
 public:
  Transaction(Connection& connection, const char* begin) : connection_(connection) { connection_.Execute(begin); }
  ~Transaction() {
    if (open_) sqlite3_exec(connection_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
  }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void Commit() {
    connection_.Execute("COMMIT");
    open_ = false;
  }

 private:
  Connection& connection_;
  bool open_ = true;
};

std::int64_t Now() { return static_cast<std::int64_t>(std::time(nullptr)); }

// A connection in WAL mode over the current schema, ready for the
// statements to be prepared.
class SchemaConnection : public Connection {
 public:
  explicit SchemaConnection(const std::filesystem::path& file)
      : Connection(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE) {
    Execute("PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;");
    Transaction transaction(*this, "BEGIN IMMEDIATE");
    Execute(kSchema);
    transaction.Commit();
  }
};

// One open database file with its statements prepared.
class Database {
 public:
  explicit Database(const std::filesystem::path& file) : connection_(file) {}

  ImportCounts Import(std::span<const FeedEntry> entries) {
    ImportCounts counts;
    bool changed = false;
    const std::int64_t now = Now();
    Transaction transaction(connection_, "BEGIN IMMEDIATE");
    for (const FeedEntry& entry : entries) {
      const bool added =
          entry.site.wholeSite
              ? insertSite_.Bind(1, entry.site.host).Bind(2, entry.source).Bind(3, entry.target).Bind(4, now).Run()
              : insertPage_.Bind(1, entry.site.siteUrl)
                    .Bind(2, entry.site.host)
                    .Bind(3, entry.source)
                    .Bind(4, entry.target)
                    .Bind(5, now)
                    .Run();
      ++(added ? counts.added : counts.known);
      changed = changed || added;
      for (const std::uint32_t address : entry.addresses) {
        changed = insertAddress_.Bind(1, std::int64_t{address}).Bind(2, entry.site.host).Run() || changed;
      }
    }
    if (changed) bumpVersion_.Run();
    transaction.Commit();
    return counts;
  }

  std::int64_t FeedVersion() {
    std::int64_t version = 0;
    if (readVersion_.Next()) version = readVersion_.Number(0);
    readVersion_.Reset();
    return version;
  }

  std::int64_t LoadIndex(IndexSource& source) {
    Transaction snapshot(connection_, "BEGIN");
    const std::int64_t version = FeedVersion();
    while (readSites_.Next()) source.PhishingSite(readSites_.Text(0));
    while (readPages_.Next()) source.PhishingPage(readPages_.Text(0), readPages_.Text(1));
    while (readAddresses_.Next()) {
      source.PhishingHostAddress(static_cast<std::uint32_t>(readAddresses_.Number(0)), readAddresses_.Text(1));
    }
    snapshot.Commit();
    return version;
  }

  void RecordObservations(std::span<const std::string> seenHosts, std::span<const HostAddress> phishingAddresses) {
    Transaction transaction(connection_, "BEGIN IMMEDIATE");
    for (const std::string& host : seenHosts) insertSeen_.Bind(1, host).Run();
    for (const auto& [address, host] : phishingAddresses) {
      insertAddress_.Bind(1, std::int64_t{address}).Bind(2, host).Run();
    }
    transaction.Commit();
  }

  void LoadSeenHosts(const std::function<bool(std::string_view)>& visit) {
    Transaction snapshot(connection_, "BEGIN");
    while (readSeen_.Next()) {
      if (!visit(readSeen_.Text(0))) {
        readSeen_.Reset();
        break;
      }
    }
    snapshot.Commit();
  }

  std::int64_t AddReport(const Report& report) {
    insertReport_.Bind(1, Now())
        .Bind(2, report.kind)
        .Bind(3, report.url)
        .Bind(4, report.name)
        .Bind(5, report.email)
        .Bind(6, report.reason)
        .Bind(7, report.userAgent)
        .Bind(8, report.clientAddress)
        .Run();
    return sqlite3_last_insert_rowid(connection_.get());
  }

  bool Moved() const { return connection_.Moved(); }

 private:
  SchemaConnection connection_;
  Statement insertPage_{connection_.get(),
                        "INSERT OR IGNORE INTO phish_pages(site_url, host, source, target, added) VALUES(?,?,?,?,?)"};
  Statement insertSite_{connection_.get(),
                        "INSERT OR IGNORE INTO phish_sites(host, source, target, added) VALUES(?,?,?,?)"};
  Statement insertAddress_{connection_.get(), "INSERT OR IGNORE INTO host_addresses(address, host) VALUES(?,?)"};
  Statement bumpVersion_{connection_.get(), "UPDATE meta SET value = value + 1 WHERE key = 'feed_version'"};
  Statement readVersion_{connection_.get(), "SELECT value FROM meta WHERE key = 'feed_version'"};
  Statement readSites_{connection_.get(), "SELECT host FROM phish_sites"};
  Statement readPages_{connection_.get(), "SELECT host, site_url FROM phish_pages ORDER BY id"};
  Statement readAddresses_{connection_.get(), "SELECT address, host FROM host_addresses"};
  Statement insertSeen_{connection_.get(), "INSERT OR IGNORE INTO seen_hosts(host) VALUES(?)"};
  Statement readSeen_{connection_.get(), "SELECT host FROM seen_hosts"};
  Statement insertReport_{connection_.get(),
                          "INSERT INTO reports(created, kind, url, name, email, reason, user_agent, client_address) "
                          "VALUES(?,?,?,?,?,?,?,?)"};
};

// The storage behind the server: a Database that is opened again when its
// file was removed or replaced by another (an operator re-creating the
// database by an import while the server runs), so that nothing is read
// from or written to a file no one else will ever see again.
class SqliteStorage final : public Storage {
 public:
  explicit SqliteStorage(std::filesystem::path file)
      : file_(std::move(file)), database_(std::make_unique<Database>(file_)) {}

  ImportCounts Import(std::span<const FeedEntry> entries) override { return database_->Import(entries); }
  std::int64_t FeedVersion() override { return database_->FeedVersion(); }
  std::int64_t LoadIndex(IndexSource& source) override { return database_->LoadIndex(source); }
  void RecordObservations(std::span<const std::string> seenHosts,
                          std::span<const HostAddress> phishingAddresses) override {
    database_->RecordObservations(seenHosts, phishingAddresses);
  }
  void LoadSeenHosts(const std::function<bool(std::string_view)>& visit) override { database_->LoadSeenHosts(visit); }
  std::int64_t AddReport(const Report& report) override { return database_->AddReport(report); }

  std::string ReopenIfReplaced() override {
    if (!database_->Moved()) return {};
    database_ = std::make_unique<Database>(file_);
    return "the database " + file_.string() + " was removed or replaced: opened it again";
  }

 private:
  std::filesystem::path file_;
  std::unique_ptr<Database> database_;
};

std::vector<Report> ReadReports(const Connection& connection) {
  Statement read(connection.get(),
                 "SELECT id, created, kind, url, name, email, reason, user_agent, client_address FROM reports "
                 "ORDER BY id");
  std::vector<Report> reports;
  while (read.Next()) {
    Report& report = reports.emplace_back();
    report.id = read.Number(0);
    report.created = read.Number(1);
    report.kind = read.Text(2);
    report.url = read.Text(3);
    report.name = read.Text(4);
    report.email = read.Text(5);
    report.reason = read.Text(6);
    report.userAgent = read.Text(7);
    report.clientAddress = read.Text(8);
  }
  return reports;
}

}  // namespace

std::unique_ptr<Storage> OpenSqliteStorage(const std::filesystem::path& file) {
  return std::make_unique<SqliteStorage>(file);
}

std::vector<Report> ReadSqliteReports(const std::filesystem::path& file) {
  try {
    return ReadReports(Connection(file, SQLITE_OPEN_READONLY));
  } catch (const StorageError&) {
    // Reading in WAL mode needs the -shm file, which a reader without write
    // access to the folder cannot create. Without a -wal file everything is
    // in the database file and no server has it open: it can be read as
    // unchanging.
    std::error_code error;
    if (std::filesystem::exists(file.string() + "-wal", error)) throw;
    return ReadReports(Connection(file, SQLITE_OPEN_READONLY, "immutable=1"));
  }
}

}  // namespace tarnwick::server
