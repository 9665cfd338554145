// Bitmap headers from an untrusted source: sizes of good files, reasons for
// bad ones, and never a read past the end.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "ui/BitmapHeader.h"
#include "ui/mdlBitmapMenu.h"

namespace tarnwick {
namespace {

void Put(std::string& bytes, std::size_t at, std::uint32_t value, int size) {
  for (int i = 0; i < size; ++i) bytes[at + static_cast<std::size_t>(i)] = static_cast<char>(value >> (8 * i));
}

// A 24-bit bitmap of `width` x `height` with a 40-byte header.
std::string Bitmap(std::int32_t width, std::int32_t height, int bitCount = 24, std::uint32_t compression = 0) {
  const std::size_t stride = (static_cast<std::size_t>(std::abs(width)) * bitCount + 31) / 32 * 4;
  std::string bytes(54 + stride * static_cast<std::size_t>(std::abs(height)), '\0');
  bytes[0] = 'B';
  bytes[1] = 'M';
  Put(bytes, 2, static_cast<std::uint32_t>(bytes.size()), 4);
  Put(bytes, 10, 54, 4);
  Put(bytes, 14, 40, 4);
  Put(bytes, 18, static_cast<std::uint32_t>(width), 4);
  Put(bytes, 22, static_cast<std::uint32_t>(height), 4);
  Put(bytes, 26, 1, 2);
  Put(bytes, 28, static_cast<std::uint32_t>(bitCount), 2);
  Put(bytes, 30, compression, 4);
  return bytes;
}

std::string Problem(const std::string& bytes) {
  const auto result = ReadBitmapSize(bytes);
  return std::holds_alternative<std::string>(result) ? std::get<std::string>(result) : "";
}

TEST(BitmapHeaderTest, SizesOfTheBitmapsTheToolbarShows) {
  const auto button = ReadBitmapSize(ProductButtonBitmap());
  ASSERT_TRUE(std::holds_alternative<BitmapSize>(button)) << std::get<std::string>(button);
  EXPECT_EQ(std::get<BitmapSize>(button).width, 24);
  EXPECT_EQ(std::get<BitmapSize>(button).height, 16);

  std::ifstream in(TARNWICK_DATA "/logo.bmp", std::ios::binary);
  const std::string logo{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  const auto size = std::get<BitmapSize>(ReadBitmapSize(logo));
  EXPECT_EQ(size.width, 48);
  EXPECT_EQ(size.height, 16);

  const auto topDown = std::get<BitmapSize>(ReadBitmapSize(Bitmap(5, -3)));
  EXPECT_EQ(topDown.height, 3);

  std::string core(26 + 4 * 2, '\0');  // the old 12-byte header with 16-bit sides
  core[0] = 'B';
  core[1] = 'M';
  Put(core, 10, 26, 4);
  Put(core, 14, 12, 4);
  Put(core, 18, 3, 2);
  Put(core, 20, 2, 2);
  Put(core, 22, 1, 2);
  Put(core, 24, 1, 2);
  const auto old = std::get<BitmapSize>(ReadBitmapSize(core));
  EXPECT_EQ(old.width, 3);
  EXPECT_EQ(old.height, 2);
}

TEST(BitmapHeaderTest, BadFilesSayWhatIsWrong) {
  EXPECT_EQ(Problem(""), "not a bitmap file");
  EXPECT_EQ(Problem("GIF89a......................"), "not a bitmap file");
  const std::string good = Bitmap(48, 16);
  for (std::size_t length = 0; length < good.size(); ++length) {
    EXPECT_NE(Problem(good.substr(0, length)), "") << length;  // every truncation is caught
  }
  EXPECT_EQ(Problem(good.substr(0, good.size() - 1)), "truncated pixel data");
  EXPECT_EQ(Problem(Bitmap(0, 16)), "unusable size 0x16");
  std::string lowest = Bitmap(16, 1);
  Put(lowest, 22, 0x80000000u, 4);  // the one height whose negation overflows 32 bits
  EXPECT_EQ(Problem(lowest), "unusable size 16x2147483648");
  EXPECT_EQ(Problem(Bitmap(3, 2, 7)), "unsupported colour depth 7");
  EXPECT_EQ(Problem(Bitmap(3, 2, 24, 4)), "unsupported compression 4");  // a JPEG inside
  EXPECT_EQ(Problem(Bitmap(3, -2, 8, 1)), "a run-length bitmap cannot be stored top-down");

  std::string header = good;
  Put(header, 14, 41000, 4);
  EXPECT_EQ(Problem(header), "unknown header size 41000");
  std::string offset = good;
  Put(offset, 10, 0xFFFFFFF0u, 4);
  EXPECT_EQ(Problem(offset), "pixel data outside the file");
  std::string wide = Bitmap(1, 1);
  Put(wide, 18, 32767, 4);
  Put(wide, 22, 32767, 4);  // 3 GB of pixels promised by a 58-byte file
  EXPECT_EQ(Problem(wide), "truncated pixel data");
}

}  // namespace
}  // namespace tarnwick
