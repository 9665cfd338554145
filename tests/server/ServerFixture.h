// A toolbar server started in-process on a free loopback port, over a
// database and a data folder in a temporary folder, and a small HTTP client
// (libcurl) to talk to it.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "common/TestSupport.h"
#include "server/Server.h"
#include "server/Storage.h"

namespace tarnwick::server::testing {

struct HttpResult {
  long status = 0;
  std::string body;
  std::vector<std::string> headerLines;  // as received, without CR LF
  // The value of the first header of that name (exact case), or "".
  std::string Header(const std::string& name) const;
  bool HasHeader(const std::string& name) const;
};

// GET (or HEAD with `head`) with extra header lines; the path is sent as is.
HttpResult HttpGet(const std::string& url, const std::vector<std::string>& headers = {}, bool head = false);
// GET from another loopback address (any 127.x.y.z reaches a server on
// 127.0.0.1), as another client would ask.
HttpResult HttpGetFrom(const std::string& source, const std::string& url);
HttpResult HttpPost(const std::string& url, const std::string& body,
                    const std::string& contentType = "application/x-www-form-urlencoded");
// A connection to a loopback port made by hand, from `source`.
class RawConnection {
 public:
  explicit RawConnection(unsigned short port, const std::string& source = "127.0.0.1");
  ~RawConnection();
  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;

  bool Send(const std::string& bytes);
  // What the server sends until `enough` holds for it, the server closes
  // the connection, or `wait` passes.
  std::string Read(std::chrono::milliseconds wait, bool (*enough)(const std::string&) = nullptr);
  bool closed() const { return closed_; }

 private:
  int socket_ = -1;
  bool closed_ = false;
};

// Sends raw bytes and returns what comes back up to the end of the answer's
// headers, or until the server closes the connection or two seconds pass.
std::string RawExchange(unsigned short port, const std::string& request);

// Writes `text` to `path`, creating folders.
void WriteText(const std::filesystem::path& path, const std::string& text);

// Imports the lines (URLs, or bare hosts for whole sites) into `database`.
void ImportLines(const std::filesystem::path& database, const std::vector<std::string>& lines);

class ServerFixture {
 public:
  ServerFixture();
  ~ServerFixture();

  // Starts (or restarts) the server over the same database and data folder.
  void Start(std::chrono::milliseconds reloadInterval = std::chrono::milliseconds(100));
  void Stop();

  std::string Url(const std::string& path) const { return base_ + path; }
  // The lines the server has logged so far.
  std::vector<std::string> Log();
  unsigned short Port() const;
  Server& server() { return *server_; }

  tarnwick::testing::TempDir dir;
  std::filesystem::path database = dir / "server.db";
  std::filesystem::path data = dir / "data";

 private:
  std::mutex logMutex_;
  std::vector<std::string> log_;
  std::unique_ptr<Server> server_;
  std::string base_;
};

// Polls `url` until its status is `status` or five seconds pass.
bool WaitForStatus(const std::string& url, long status);

}  // namespace tarnwick::server::testing
