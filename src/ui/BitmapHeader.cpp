#include "ui/BitmapHeader.h"

#include <cstdint>

namespace tarnwick {
namespace {

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::uint32_t kCoreHeaderSize = 12;  // OS/2 1.x: 16-bit width and height
constexpr std::uint32_t kInfoHeaderSize = 40;  // and the larger V2 to V5 headers
constexpr std::uint32_t kMaxHeaderSize = 124;
constexpr std::int64_t kMaxSide = 32767;

// Compression methods a window can draw from a file.
constexpr std::uint32_t kBiRgb = 0;
constexpr std::uint32_t kBiRle8 = 1;
constexpr std::uint32_t kBiRle4 = 2;
constexpr std::uint32_t kBiBitfields = 3;

std::uint32_t Little(std::string_view bytes, std::size_t at, int size) {
  std::uint32_t value = 0;
  for (int i = size - 1; i >= 0; --i) {
    value = value << 8 | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
  }
  return value;
}

std::int32_t Signed32(std::string_view bytes, std::size_t at) {
  return static_cast<std::int32_t>(Little(bytes, at, 4));
}

}  // namespace

std::variant<BitmapSize, std::string> ReadBitmapSize(std::string_view bytes) {
  if (bytes.size() < kFileHeaderSize + 4 || bytes.substr(0, 2) != "BM") return std::string("not a bitmap file");
  const std::uint32_t pixelOffset = Little(bytes, 10, 4);
  const std::uint32_t headerSize = Little(bytes, 14, 4);
  if (headerSize != kCoreHeaderSize && (headerSize < kInfoHeaderSize || headerSize > kMaxHeaderSize)) {
    return "unknown header size " + std::to_string(headerSize);
  }
  if (bytes.size() < kFileHeaderSize + headerSize) return std::string("truncated header");

  std::int64_t width = 0;
  std::int64_t height = 0;
  std::uint32_t bitCount = 0;
  std::uint32_t compression = kBiRgb;
  if (headerSize == kCoreHeaderSize) {
    width = Little(bytes, 18, 2);
    height = Little(bytes, 20, 2);
    bitCount = Little(bytes, 24, 2);
  } else {
    width = Signed32(bytes, 18);
    height = Signed32(bytes, 22);
    bitCount = Little(bytes, 28, 2);
    compression = Little(bytes, 30, 4);
  }
  const bool topDown = height < 0;
  if (topDown) height = -height;
  if (width <= 0 || height <= 0 || width > kMaxSide || height > kMaxSide) {
    return "unusable size " + std::to_string(width) + "x" + std::to_string(height);
  }
  const bool knownDepth =
      bitCount == 1 || bitCount == 4 || bitCount == 8 || bitCount == 16 || bitCount == 24 || bitCount == 32;
  if (!knownDepth) return "unsupported colour depth " + std::to_string(bitCount);
  const bool compressionFits = compression == kBiRgb || (compression == kBiRle8 && bitCount == 8) ||
                               (compression == kBiRle4 && bitCount == 4) ||
                               (compression == kBiBitfields && (bitCount == 16 || bitCount == 32));
  if (!compressionFits) return "unsupported compression " + std::to_string(compression);
  if (topDown && (compression == kBiRle8 || compression == kBiRle4)) {
    return std::string("a run-length bitmap cannot be stored top-down");
  }
  if (pixelOffset < kFileHeaderSize + headerSize || pixelOffset >= bytes.size()) {
    return std::string("pixel data outside the file");
  }
  if (compression == kBiRgb || compression == kBiBitfields) {
    const std::int64_t stride = (width * bitCount + 31) / 32 * 4;
    if (static_cast<std::int64_t>(bytes.size() - pixelOffset) < stride * height) {
      return std::string("truncated pixel data");
    }
  }
  return BitmapSize{static_cast<int>(width), static_cast<int>(height)};
}

}  // namespace tarnwick
