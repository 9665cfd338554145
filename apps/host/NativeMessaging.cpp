#include "NativeMessaging.h"

#include <array>
#include <cstring>
#include <istream>
#include <ostream>

namespace tarnwick::host {

Frame ReadFrame(std::istream& in, std::size_t limit) {
  Frame frame;
  std::array<char, 4> prefix{};
  in.read(prefix.data(), prefix.size());
  if (in.gcount() == 0) return frame;
  if (in.gcount() != static_cast<std::streamsize>(prefix.size())) {
    frame.status = FrameStatus::Truncated;
    return frame;
  }
  std::memcpy(&frame.length, prefix.data(), prefix.size());
  if (frame.length > limit) {
    // Read past it in pieces, so that the next message starts where it should.
    std::array<char, 64 * 1024> sink{};
    for (std::uint32_t left = frame.length; left > 0;) {
      in.read(sink.data(), std::min<std::streamsize>(left, sink.size()));
      if (in.gcount() == 0) {
        frame.status = FrameStatus::Truncated;
        return frame;
      }
      left -= static_cast<std::uint32_t>(in.gcount());
    }
    frame.status = FrameStatus::TooLarge;
    return frame;
  }
  frame.body.resize(frame.length);
  in.read(frame.body.data(), static_cast<std::streamsize>(frame.length));
  if (in.gcount() != static_cast<std::streamsize>(frame.length)) {
    frame.body.clear();
    frame.status = FrameStatus::Truncated;
    return frame;
  }
  frame.status = FrameStatus::Message;
  return frame;
}

bool WriteFrame(std::ostream& out, std::string_view body) {
  if (body.size() > kMaxOutgoingBytes) return false;
  const auto length = static_cast<std::uint32_t>(body.size());
  std::array<char, 4> prefix{};
  std::memcpy(prefix.data(), &length, prefix.size());
  out.write(prefix.data(), prefix.size());
  out.write(body.data(), static_cast<std::streamsize>(body.size()));
  out.flush();
  return static_cast<bool>(out);
}

}  // namespace tarnwick::host
