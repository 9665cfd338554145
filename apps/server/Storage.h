// Where the server keeps its data: the phishing feeds, what it has observed
// while answering, and the reports people submit. One object is one
// connection, used by one thread at a time. SQLite is the embedded backend;
// a shared database for several servers (PostgreSQL) fits behind the same
// interface.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "server/FeedUrl.h"

namespace tarnwick::server {

class StorageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct FeedEntry {
  SiteUrl site;
  std::string source;                    // the feed format it came from
  std::string target;                    // the brand the feed names; may be empty
  std::vector<std::uint32_t> addresses;  // hosting addresses the feed gives
};

struct ImportCounts {
  std::size_t added = 0;
  std::size_t known = 0;  // already in the database
};

struct Report {
  std::int64_t id = 0;
  std::int64_t created = 0;  // seconds since 1970 (UTC)
  std::string kind;          // "phishing", "mistake" or "bug"
  std::string url;
  std::string name;
  std::string email;
  std::string reason;
  std::string userAgent;
  std::string clientAddress;
};

using HostAddress = std::pair<std::uint32_t, std::string>;

// Receives what the in-memory index is built from, row by row, pages oldest first.
class IndexSource {
 public:
  virtual ~IndexSource() = default;
  virtual void PhishingSite(std::string_view host) = 0;
  virtual void PhishingPage(std::string_view host, std::string_view siteUrl) = 0;
  virtual void PhishingHostAddress(std::uint32_t address, std::string_view host) = 0;
};

class Storage {
 public:
  virtual ~Storage() = default;

  // Adds the entries in one transaction: all of them or, on a StorageError,
  // none. An entry already stored counts as known and changes nothing.
  virtual ImportCounts Import(std::span<const FeedEntry> entries) = 0;
  // A number that changes whenever an import adds something.
  virtual std::int64_t FeedVersion() = 0;
  // Feeds the whole feed data to `source` from one consistent snapshot and
  // returns the feed version of that snapshot.
  virtual std::int64_t LoadIndex(IndexSource& source) = 0;

  // Hosts asked about, and addresses of phishing hosts seen in requests.
  virtual void RecordObservations(std::span<const std::string> seenHosts,
                                  std::span<const HostAddress> phishingAddresses) = 0;
  // Every host recorded as seen until `visit` returns false.
  virtual void LoadSeenHosts(const std::function<bool(std::string_view)>& visit) = 0;

  // Stores a report durably and returns its number.
  virtual std::int64_t AddReport(const Report& report) = 0;

  // Opens the storage again when the place it was opened at now holds
  // another one (its file was removed, or replaced by another): the line to
  // log when it did, or "". Throws StorageError when it cannot open it.
  virtual std::string ReopenIfReplaced() = 0;
};

// Opens (creating when missing) a SQLite database file in WAL mode. Throws
// StorageError when it cannot.
std::unique_ptr<Storage> OpenSqliteStorage(const std::filesystem::path& file);

// The reports in a SQLite database file, oldest first, read without
// changing the file (so read access is enough). Throws StorageError when
// it cannot.
std::vector<Report> ReadSqliteReports(const std::filesystem::path& file);

}  // namespace tarnwick::server
