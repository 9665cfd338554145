// Ed25519 signatures as updates carry them, and keys as hex text.
#include <gtest/gtest.h>

#include "support/Signatures.h"

namespace tarnwick {
namespace {

TEST(Signatures, OnlyTheSignedContentWithTheRightKeyVerifies) {
  const auto pair = MakeKeyPair();
  const auto other = MakeKeyPair();
  ASSERT_TRUE(pair && other);
  const std::string content("MZ\x90\0program", 10);
  const std::string signature = SignDetached(content, pair->secretKey);
  ASSERT_EQ(signature.size(), kSignatureBytes);
  EXPECT_TRUE(VerifyDetached(content, signature, pair->publicKey));
  EXPECT_FALSE(VerifyDetached(content + "x", signature, pair->publicKey));
  EXPECT_FALSE(VerifyDetached(content, signature, other->publicKey));
  EXPECT_FALSE(VerifyDetached(content, signature.substr(1), pair->publicKey));
  EXPECT_FALSE(VerifyDetached(content, "<html>captive portal</html>", pair->publicKey));
}

TEST(Signatures, KeysReadBackFromHexAndNothingElseReads) {
  const auto pair = MakeKeyPair();
  ASSERT_TRUE(pair);
  const std::string publicHex = KeyToHex(pair->publicKey);
  EXPECT_EQ(publicHex.size(), 64u);
  EXPECT_EQ(PublicKeyFromHex(" " + publicHex + "\r\n"), pair->publicKey);
  EXPECT_EQ(SecretKeyFromHex(KeyToHex(pair->secretKey) + "\n"), pair->secretKey);
  for (const std::string& bad : {std::string(), publicHex.substr(2), publicHex + "00", "zz" + publicHex.substr(2),
                                 publicHex.substr(0, 32) + " " + publicHex.substr(32)}) {
    EXPECT_FALSE(PublicKeyFromHex(bad)) << bad;
  }
  // A secret key whose public half is not its seed's.
  SecretKey mixed = pair->secretKey;
  mixed[40] ^= 1;
  EXPECT_FALSE(SecretKeyFromHex(KeyToHex(mixed)));
}

}  // namespace
}  // namespace tarnwick
