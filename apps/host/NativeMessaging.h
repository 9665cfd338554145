// Chromium's native messaging framing: each message is a 32-bit length in
// the machine's byte order followed by that many bytes of UTF-8 JSON, on
// standard input (from the browser) and standard output (to it).
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace tarnwick::host {

// The largest message taken from the browser: post data and the report
// form are far smaller. A longer one is read past and answered with an error.
inline constexpr std::size_t kMaxIncomingBytes = 4u << 20;
// The browser refuses a message from its host longer than this.
inline constexpr std::size_t kMaxOutgoingBytes = 1u << 20;

enum class FrameStatus {
  Message,    // `body` holds the message
  End,        // the stream ended between messages: the browser let go of the port
  TooLarge,   // longer than the limit; its bytes were read past, the stream stays in step
  Truncated,  // the stream ended inside a length or a body
};

struct Frame {
  FrameStatus status = FrameStatus::End;
  std::string body;
  std::uint32_t length = 0;  // as announced
};

// Reads the next frame. Never reads more than `limit` bytes into memory.
Frame ReadFrame(std::istream& in, std::size_t limit = kMaxIncomingBytes);
// Writes one frame and flushes it; false when the stream failed or `body`
// is longer than the browser takes.
bool WriteFrame(std::ostream& out, std::string_view body);

}  // namespace tarnwick::host
