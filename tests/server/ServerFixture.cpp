#include "ServerFixture.h"

#include <arpa/inet.h>
#include <curl/curl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "server/FeedImport.h"

namespace tarnwick::server::testing {
namespace {

std::size_t CollectBody(char* data, std::size_t size, std::size_t count, void* body) {
  static_cast<std::string*>(body)->append(data, size * count);
  return size * count;
}

std::size_t CollectHeader(char* data, std::size_t size, std::size_t count, void* lines) {
  std::string line(data, size * count);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  if (!line.empty()) static_cast<std::vector<std::string>*>(lines)->push_back(line);
  return size * count;
}

HttpResult Perform(CURL* curl, const std::string& url, const std::vector<std::string>& headers) {
  HttpResult result;
  curl_slist* list = nullptr;
  for (const auto& header : headers) list = curl_slist_append(list, header.c_str());
  curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
  curl_easy_setopt(curl, CURLOPT_PATH_AS_IS, 1L);
  curl_easy_setopt(curl, CURLOPT_HTTPHEADER, list);
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, CollectBody);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &result.body);
  curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, CollectHeader);
  curl_easy_setopt(curl, CURLOPT_HEADERDATA, &result.headerLines);
  curl_easy_setopt(curl, CURLOPT_TIMEOUT, 10L);
  curl_easy_setopt(curl, CURLOPT_NOPROXY, "*");
  const CURLcode code = curl_easy_perform(curl);
  EXPECT_EQ(code, CURLE_OK) << url << ": " << curl_easy_strerror(code);
  curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &result.status);
  curl_slist_free_all(list);
  curl_easy_cleanup(curl);
  return result;
}

}  // namespace

std::string HttpResult::Header(const std::string& name) const {
  for (const auto& line : headerLines) {
    if (line.compare(0, name.size() + 1, name + ":") == 0) {
      const auto value = line.find_first_not_of(' ', name.size() + 1);
      return value == std::string::npos ? std::string() : line.substr(value);
    }
  }
  return {};
}

bool HttpResult::HasHeader(const std::string& name) const {
  for (const auto& line : headerLines) {
    if (line.compare(0, name.size() + 1, name + ":") == 0) return true;
  }
  return false;
}

HttpResult HttpGet(const std::string& url, const std::vector<std::string>& headers, bool head) {
  CURL* curl = curl_easy_init();
  if (head) curl_easy_setopt(curl, CURLOPT_NOBODY, 1L);
  return Perform(curl, url, headers);
}

HttpResult HttpPost(const std::string& url, const std::string& body, const std::string& contentType) {
  CURL* curl = curl_easy_init();
  curl_easy_setopt(curl, CURLOPT_POSTFIELDS, body.c_str());
  curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
  return Perform(curl, url, {"Content-Type: " + contentType, "Expect:"});
}

HttpResult HttpGetFrom(const std::string& source, const std::string& url) {
  CURL* curl = curl_easy_init();
  curl_easy_setopt(curl, CURLOPT_INTERFACE, source.c_str());
  return Perform(curl, url, {});
}

RawConnection::RawConnection(unsigned short port, const std::string& source) {
  socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in local{};
  local.sin_family = AF_INET;
  inet_pton(AF_INET, source.c_str(), &local.sin_addr);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool connected = bind(socket_, reinterpret_cast<sockaddr*>(&local), sizeof local) == 0 &&
                         connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  EXPECT_TRUE(connected) << "cannot connect from " << source << ": " << std::strerror(errno);
  closed_ = !connected;
}

RawConnection::~RawConnection() { close(socket_); }

bool RawConnection::Send(const std::string& bytes) {
  return !closed_ && send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

std::string RawConnection::Read(std::chrono::milliseconds wait, bool (*enough)(const std::string&)) {
  const auto deadline = std::chrono::steady_clock::now() + wait;
  std::string answer;
  while (!closed_ && (enough == nullptr || !enough(answer))) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd ready{socket_, POLLIN, 0};
    if (left.count() <= 0 || poll(&ready, 1, static_cast<int>(left.count())) <= 0) break;
    char buffer[4096];
    const ssize_t got = recv(socket_, buffer, sizeof buffer, 0);
    if (got <= 0) {
      closed_ = true;
    } else {
      answer.append(buffer, static_cast<std::size_t>(got));
    }
  }
  return answer;
}

std::string RawExchange(unsigned short port, const std::string& request) {
  RawConnection connection(port);
  if (!connection.Send(request)) return {};
  return connection.Read(std::chrono::seconds(2),
                         [](const std::string& text) { return text.find("\r\n\r\n") != std::string::npos; });
}

void WriteText(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

void ImportLines(const std::filesystem::path& database, const std::vector<std::string>& lines) {
  struct Quiet final : ImportProgress {
    void Committed(const ImportSummary&) override {}
    void Rejected(const std::string& where, const std::string& reason) override { ADD_FAILURE() << where << reason; }
  } progress;
  std::stringstream feed;
  for (const auto& line : lines) feed << line << '\n';
  ImportFeed(feed, ImportOptions{FeedFormat::Lines}, *OpenSqliteStorage(database), progress);
}

ServerFixture::ServerFixture() { std::filesystem::create_directories(data); }

ServerFixture::~ServerFixture() { Stop(); }

void ServerFixture::Start(std::chrono::milliseconds reloadInterval) {
  Stop();
  ServerSettings settings;
  settings.listen = {"127.0.0.1", 0};
  settings.database = database;
  settings.dataFolder = data;
  settings.reloadInterval = reloadInterval;
  std::string error;
  server_ = Server::Start(
      settings,
      [this](const std::string& line) {
        std::lock_guard lock(logMutex_);
        log_.push_back(line);
      },
      error);
  ASSERT_NE(server_, nullptr) << error;
  base_ = server_->Address();
}

void ServerFixture::Stop() { server_.reset(); }

std::vector<std::string> ServerFixture::Log() {
  std::lock_guard lock(logMutex_);
  return log_;
}

unsigned short ServerFixture::Port() const {
  return static_cast<unsigned short>(std::stoi(base_.substr(base_.rfind(':') + 1)));
}

bool WaitForStatus(const std::string& url, long status) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (std::chrono::steady_clock::now() < deadline) {
    if (HttpGet(url).status == status) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}

}  // namespace tarnwick::server::testing
