// The server's hash list, /file_hashes: NAME=HASH lines ended by CR LF.
#include "FuzzSupport.h"
#include "net/FileHashList.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnwick;
  const std::string_view reply = fuzz::AsText(data, size);
  const FileHashList list = ReadFileHashList(reply);
  // Written back as the server writes it, the list reads the same.
  std::string written;
  for (const auto& [name, hash] : list.entries) {
    if (name.find('=') != std::string::npos || hash.find('=') != std::string::npos) {
      fuzz::Broken("names and hashes hold no '='", name + "=" + hash);
    }
    if (name.find("\r\n") != std::string::npos || hash.find("\r\n") != std::string::npos) {
      fuzz::Broken("an entry is one line", name + "=" + hash);
    }
    written += name + "=" + hash + "\r\n";
  }
  if (ReadFileHashList(written).entries != list.entries) fuzz::Broken("the list reads back", written);
  return 0;
}
