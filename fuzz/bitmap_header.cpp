// logo.bmp as the server sends it: its size, or why it cannot be shown.
#include "FuzzSupport.h"
#include "ui/BitmapHeader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  const auto read = ReadBitmapSize(fuzz::AsText(data, size));
  if (const auto* bitmap = std::get_if<BitmapSize>(&read)) {
    if (bitmap->width < 1 || bitmap->height < 1 || bitmap->width > 32767 || bitmap->height > 32767) {
      fuzz::Broken("sides of 1 to 32,767 pixels");
    }
  } else if (std::get<std::string>(read).empty()) {
    fuzz::Broken("a refusal says why");
  }
  return 0;
}
