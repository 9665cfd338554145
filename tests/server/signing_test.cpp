// Signed updates: with a key in the data folder every file under /updates/
// and every /check_update offer has its signature at PATH.sig; without one
// there are none; keygen makes the pair.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "ServerFixture.h"
#include "server/UpdateSigning.h"
#include "support/Files.h"

namespace tarnwick::server::testing {
namespace {

TEST(UpdateSigningTest, SignedPathsVerifyWithThePublicKeyAndUnsignedServersServeNone) {
  ServerFixture server;
  WriteText(server.data / "tarnwickrex.dll", std::string("MZ\x90\0component", 12));
  WriteText(server.data / "localblock.dat", "^https?://[^/]*@\r\n");
  WriteText(server.data / "releases" / "1.2.0" / "twtb.dll", "version 1.2.0");
  const std::string offer = "/check_update/127/1.0.0/0123456789ABCDEF0123456789ABCDEF";
  server.Start();
  EXPECT_EQ(HttpGet(server.Url("/updates/tarnwickrex.dll.sig")).status, 404);
  EXPECT_EQ(HttpGet(server.Url(offer + ".sig")).status, 404);

  std::string error;
  const auto publicHex = WriteKeyPair(server.data / "server", error);
  ASSERT_TRUE(publicHex) << error;
  const auto publicKey = PublicKeyFromHex(*publicHex);
  server.Start();
  for (const std::string& path :
       {std::string("/updates/tarnwickrex.dll"), std::string("/updates/localblock.dat"), offer}) {
    const HttpResult file = HttpGet(server.Url(path));
    const HttpResult signature = HttpGet(server.Url(path + ".sig"));
    ASSERT_EQ(signature.status, 200) << path;
    EXPECT_EQ(signature.body.size(), kSignatureBytes) << path;
    EXPECT_TRUE(VerifyDetached(file.body, signature.body, *publicKey)) << path;
  }
  // What has no answer has no signature either, and the secret key is never served.
  EXPECT_EQ(HttpGet(server.Url("/updates/missing.dll.sig")).status, 404);
  EXPECT_EQ(HttpGet(server.Url("/updates/server%2Fupdate-signing.key")).status, 404);
  EXPECT_EQ(HttpGet(server.Url("/check_update/127/1.2.0/GUID.sig")).status, 404);
  EXPECT_EQ(HttpGet(server.Url("/check_update/127/1.0/GUID.sig")).status, 400);
}

TEST(UpdateSigningTest, AKeyTheServerWasToldToUseMustBeThere) {
  tarnwick::testing::TempDir dir;
  ServerSettings settings;
  settings.listen = {"127.0.0.1", 0};
  settings.database = dir / "server.db";
  settings.dataFolder = dir / "data";
  settings.signingKey = dir / "missing.key";
  std::string error;
  EXPECT_EQ(Server::Start(
                settings, [](const std::string&) {}, error),
            nullptr);
  EXPECT_NE(error.find("missing.key"), std::string::npos) << error;

  WriteText(settings.signingKey, "0123");
  EXPECT_EQ(Server::Start(
                settings, [](const std::string&) {}, error),
            nullptr);
  EXPECT_NE(error.find("holds no update signing key"), std::string::npos) << error;
}

TEST(UpdateSigningTest, KeygenWritesAPairThatSignsAndNeverOverwritesOne) {
  tarnwick::testing::TempDir dir;
  std::string error;
  const auto publicHex = WriteKeyPair(dir / "keys", error);
  ASSERT_TRUE(publicHex) << error;
  struct stat secret {};
  ASSERT_EQ(::stat((dir / "keys" / kSecretKeyFileName).c_str(), &secret), 0);
  EXPECT_EQ(secret.st_mode & 0777, 0600u);
  const auto signer = UpdateSigner::Load(dir / "keys" / kSecretKeyFileName, error);
  ASSERT_TRUE(signer) << error;
  EXPECT_EQ(signer->PublicKeyHex(), *publicHex);
  std::ifstream publicFile(dir / "keys" / kPublicKeyFileName);
  std::string written;
  publicFile >> written;
  EXPECT_EQ(written, *publicHex);

  EXPECT_FALSE(WriteKeyPair(dir / "keys", error));
  EXPECT_NE(error.find("already exists"), std::string::npos) << error;
  EXPECT_EQ(UpdateSigner::Load(dir / "keys" / kSecretKeyFileName, error)->PublicKeyHex(), *publicHex);
}

}  // namespace
}  // namespace tarnwick::server::testing
