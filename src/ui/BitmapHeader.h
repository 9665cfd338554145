// The width and height of a Windows bitmap file (.bmp), read from its
// headers after checking that the file holds what the headers promise. The
// bytes come from the server, so nothing in them is trusted.
#pragma once

#include <string>
#include <string_view>
#include <variant>

namespace tarnwick {

struct BitmapSize {
  int width = 0;
  int height = 0;
};

// The size of the bitmap in `bytes`, or why it is not a bitmap a window can
// show ("truncated pixel data", "unsupported compression 4", ...). A bitmap
// stored top-down reports its height as a positive number.
std::variant<BitmapSize, std::string> ReadBitmapSize(std::string_view bytes);

}  // namespace tarnwick
