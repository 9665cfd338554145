// tarnwick-server keygen [--out DIR]: a fresh key pair for signing updates.
#include <iostream>

#include "ServerCli.h"
#include "server/UpdateSigning.h"

namespace tarnwick::server::cli {

int RunKeygen(const std::vector<std::string>& args) {
  Arguments parsed;
  std::string error;
  if (!ParseArguments(args, {"--out"}, {}, parsed, error) || !parsed.operands.empty()) {
    std::cerr << "tarnwick-server: " << (error.empty() ? "unexpected operand" : error) << '\n'
              << "usage: tarnwick-server keygen [--out DIR]\n";
    return kExitError;
  }
  const auto out = parsed.values.find("--out");
  const std::filesystem::path folder = out != parsed.values.end() ? std::filesystem::path(out->second) : ".";
  const auto publicKey = WriteKeyPair(folder, error);
  if (!publicKey) {
    std::cerr << "tarnwick-server: " << error << '\n';
    return kExitError;
  }
  std::cout << "public key: " << *publicKey << '\n'
            << "wrote " << (folder / kSecretKeyFileName).string() << " (secret: serve --signing-key reads it)\n"
            << "wrote " << (folder / kPublicKeyFileName).string()
            << " (build the toolbar with -DTARNWICK_UPDATE_PUBLIC_KEY=" << *publicKey
            << ", or point its UpdatePublicKeyFile setting at this file)\n";
  return kExitOk;
}

}  // namespace tarnwick::server::cli
