// PhishTank's online-valid.json: an array of objects with the CSV's fields
// and "details", whose "ip_address" entries give the hosting addresses.
//
// The feed is read as a stream of parser events (nlohmann's SAX interface),
// each entry turned into a row as soon as it closes, so memory stays bounded
// whatever the feed holds: only the few fields a row needs are kept, an
// entry with more than kMaxValuesPerEntry values is rejected whole, and the
// input is cut off when kMaxBytesUnread bytes pass without a string, number
// or literal: the parser keeps every byte it reads from the start of the
// last one (for its messages), so a long string, or a long run of brackets
// and commas, would otherwise sit in memory whole.
#include <arpa/inet.h>

#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>

#include "server/AddressText.h"
#include "server/FeedFormats.h"

namespace tarnwick::server {
namespace {

constexpr std::size_t kMaxValuesPerEntry = 1000;
constexpr std::size_t kMaxBytesUnread = 1 << 20;
constexpr int kMaxDepth = 64;

// The bytes of the feed as the parser asks for them, one at a time, with
// the line they are on and the cut-off above.
struct FeedInput {
  explicit FeedInput(std::istream& in) : buffer(*in.rdbuf()) {}

  bool AtEnd() {
    if (sinceScalar > kMaxBytesUnread) {
      cutOff = true;
      return true;
    }
    return buffer.sgetc() == std::char_traits<char>::eof();
  }
  char Current() { return std::char_traits<char>::to_char_type(buffer.sgetc()); }
  void Advance() {
    if (buffer.sbumpc() == '\n') ++line;
    ++sinceScalar;
  }

  std::streambuf& buffer;
  std::size_t line = 1;
  std::size_t sinceScalar = 0;  // bytes since the last string, number or literal began
  bool cutOff = false;
};

// An input iterator over FeedInput; any two compare equal once it is at its end.
class FeedIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = char;

  explicit FeedIterator(FeedInput* input = nullptr) : input_(input) {}
  char operator*() const { return input_->Current(); }
  FeedIterator& operator++() {
    input_->Advance();
    return *this;
  }
  FeedIterator operator++(int) {
    FeedIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const FeedIterator& other) const { return AtEnd() == other.AtEnd(); }

 private:
  bool AtEnd() const { return input_ == nullptr || input_->AtEnd(); }
  FeedInput* input_;
};

using Json = nlohmann::json;

// The parser's message without its prefix and without the text it last
// read (which may be a long piece of the feed): "[json.exception...] parse
// error at line 8, column 5: syntax error ...; last read: '...'; expected '}'".
std::string Reason(std::string message) {
  const auto detail = message.find(": ", message.find("parse error"));
  if (detail != std::string::npos) message.erase(0, detail + 2);
  const auto lastRead = message.find("; last read: '");
  if (lastRead != std::string::npos) {
    const auto end = message.find("'; ", lastRead + 14);
    message.erase(lastRead, end == std::string::npos ? std::string::npos : end + 1 - lastRead);
  }
  return message;
}

// Turns the parser's events into rows. Depth counts the open arrays and
// objects: the feed's array is depth 1, an entry's members are at depth 2,
// and the objects of an entry's "details" array at depth 4.
class EntryCollector final : public nlohmann::json_sax<Json> {
 public:
  EntryCollector(FeedInput& input, FeedSink& sink) : input_(input), sink_(sink) {}

  bool null() override { return Scalar(); }
  bool boolean(bool) override { return Scalar(); }
  bool number_integer(number_integer_t) override { return Scalar(); }
  bool number_unsigned(number_unsigned_t) override { return Scalar(); }
  bool number_float(number_float_t, const string_t&) override { return Scalar(); }
  bool binary(binary_t&) override { return Scalar(); }

  bool string(string_t& value) override {
    if (!Scalar()) return false;
    if (depth_ == 2 && entryIsObject_) Member(std::move(value));
    if (depth_ == 4 && inDetails_ && detailKey_ == "ip_address") Address(value);
    return true;
  }

  bool key(string_t& name) override {
    input_.sinceScalar = 0;
    if (depth_ == 2) member_ = std::move(name);
    if (depth_ == 4) detailKey_ = std::move(name);
    return true;
  }

  bool start_object(std::size_t) override { return Open(true); }
  bool start_array(std::size_t) override { return Open(false); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }

  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) override {
    Fail(input_.cutOff ? "more than 1 MiB without a string, number or literal" : Reason(error.what()));
    return false;
  }

  // Reports why the parser stopped when a handler stopped it.
  void Stopped() {
    if (!failed_) Fail(failure_);
  }

 private:
  void Fail(const std::string& reason) {
    failed_ = true;
    if (finished_) {
      sink_.Reject("line " + std::to_string(input_.line), "text after the closing ] of the feed");
      return;
    }
    const std::size_t entry = entries_ + (inEntry_ ? 0 : 1);
    sink_.Reject("entry " + std::to_string(entry),
                 "malformed JSON at line " + std::to_string(input_.line) + ": " + reason + "; the rest is not read");
  }

  // A value of any kind; false when the parse must stop.
  bool Value() {
    if (depth_ == 0) {
      failure_ = "the feed is not a JSON array";
      return false;
    }
    if (depth_ == 1) {
      ++entries_;
      inEntry_ = true;
      where_ = "entry " + std::to_string(entries_) + " (line " + std::to_string(input_.line) + ")";
      values_ = 0;
      entryIsObject_ = false;
      url_.reset();
      target_.clear();
      verified_.reset();
      online_.reset();
      addresses_.clear();
    }
    ++values_;
    // A flag given as anything but text says no, as one saying other than "yes" does.
    if (depth_ == 2 && member_ == "verified") verified_ = false;
    if (depth_ == 2 && member_ == "online") online_ = false;
    return true;
  }

  bool Scalar() {
    input_.sinceScalar = 0;
    if (!Value()) return false;
    if (depth_ == 1) EndEntry();
    return true;
  }

  bool Open(bool object) {
    if (depth_ == 0 && !object) {  // the feed's array
      depth_ = 1;
      return true;
    }
    if (!Value()) return false;
    if (depth_ == 1) entryIsObject_ = object;
    if (depth_ == 2 && !object && member_ == "details") inDetails_ = true;
    if (++depth_ > kMaxDepth) {
      failure_ = "nested deeper than " + std::to_string(kMaxDepth) + " levels";
      return false;
    }
    return true;
  }

  bool Close() {
    --depth_;
    if (depth_ == 2) inDetails_ = false;
    if (depth_ == 1) EndEntry();
    if (depth_ == 0) finished_ = true;
    return true;
  }

  void Member(std::string value) {
    if (member_ == "url") url_ = std::move(value);
    if (member_ == "target") target_ = std::move(value);
    if (member_ == "verified") verified_ = value == "yes";
    if (member_ == "online") online_ = value == "yes";
  }

  void Address(const std::string& text) {
    if (addresses_.size() >= kMaxAddressesPerRow) return;
    if (const auto address = ReadIPv4Text(text)) addresses_.push_back(ntohl(address->s_addr));
  }

  void EndEntry() {
    inEntry_ = false;
    if (!entryIsObject_) {
      sink_.Reject(where_, "not an object");
    } else if (values_ > kMaxValuesPerEntry) {
      sink_.Reject(where_, "more than " + std::to_string(kMaxValuesPerEntry) + " values");
    } else if (!url_ || url_->empty()) {
      sink_.Reject(where_, "no url");
    } else if (verified_ && !*verified_) {
      sink_.Reject(where_, "not verified");
    } else if (online_ && !*online_) {
      sink_.Reject(where_, "not online");
    } else {
      sink_.Row({where_, std::move(*url_), std::move(target_), std::move(addresses_)});
    }
  }

  FeedInput& input_;
  FeedSink& sink_;
  int depth_ = 0;
  std::size_t entries_ = 0;
  bool inEntry_ = false;
  bool finished_ = false;
  bool failed_ = false;
  std::string failure_;

  // The entry being read.
  std::string where_;
  std::size_t values_ = 0;
  bool entryIsObject_ = false;
  std::string member_;
  std::string detailKey_;
  bool inDetails_ = false;
  std::optional<std::string> url_;
  std::string target_;
  std::optional<bool> verified_, online_;
  std::vector<std::uint32_t> addresses_;
};

}  // namespace

void ReadPhishtankJson(std::istream& in, FeedSink& sink) {
  FeedInput input(in);
  EntryCollector collector(input, sink);
  if (!Json::sax_parse(FeedIterator(&input), FeedIterator(), &collector)) collector.Stopped();
}

}  // namespace tarnwick::server
