// The address parser reads exactly what the sockets library reads: checked
// by hand for the forms people write, and against inet_aton itself over
// many generated texts where the platform has it.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "support/IPv4Address.h"

#ifndef _WIN32
#include <arpa/inet.h>
#endif

namespace tarnwick {
namespace {

TEST(IPv4AddressTest, EveryNumericFormOfAnAddress) {
  const IPv4Bytes google{8, 8, 8, 8};
  for (const char* text :
       {"8.8.8.8", "134744072", "0x08080808", "0X8080808", "01002004010", "010.010.010.010", "8.526344", "8.8.2056",
        "0x8.0x8.0x8.0x8", "8.0x80808", "8.8.8.8 trailing text", "134744072\t"}) {
    EXPECT_EQ(ParseIPv4Address(text), google) << text;
  }
  EXPECT_EQ(ParseIPv4Address("10.1"), (IPv4Bytes{10, 0, 0, 1}));
  EXPECT_EQ(ParseIPv4Address("3232235777"), (IPv4Bytes{192, 168, 1, 1}));
  EXPECT_EQ(ParseIPv4Address("0"), (IPv4Bytes{0, 0, 0, 0}));
  EXPECT_EQ(ParseIPv4Address("4294967295"), (IPv4Bytes{255, 255, 255, 255}));
  EXPECT_EQ(DottedAddress({192, 0, 2, 255}), "192.0.2.255");
}

TEST(IPv4AddressTest, WhatIsNoAddress) {
  for (const char* text : {"",
                           " 8.8.8.8",
                           "8.8.8.8.",
                           "1.2.3.4.5",
                           "256.1.1.1",
                           "1.256.1.1",
                           "1.1.1.256",
                           "1.16777216",
                           "1.1.65536",
                           "4294967296",
                           "0x100000000",
                           "08",
                           "0x",
                           "0xg",
                           "1..1",
                           ".1",
                           "-1",
                           "+1",
                           "1.2.3.4x",
                           "deadbeef",
                           "0x7f.1.2.3.4",
                           "99999999999999999999999"}) {
    EXPECT_EQ(ParseIPv4Address(text), std::nullopt) << '"' << text << '"';
  }
}

#ifndef _WIN32
TEST(IPv4AddressTest, AgreesWithInetAton) {
  std::mt19937 random(20260101);
  const std::string alphabet = "0123456789.xXaf9 \t-+g";
  for (int round = 0; round < 200000; ++round) {
    std::string text;
    const auto length = random() % 14;
    for (unsigned i = 0; i < length; ++i) text += alphabet[random() % alphabet.size()];
    in_addr expected{};
    const bool parsed = inet_aton(text.c_str(), &expected) != 0;
    const auto ours = ParseIPv4Address(text);
    ASSERT_EQ(ours.has_value(), parsed) << '"' << text << '"';
    if (parsed) {
      EXPECT_EQ(std::memcmp(ours->data(), &expected.s_addr, 4), 0) << '"' << text << '"';
    }
  }
}
#endif

}  // namespace
}  // namespace tarnwick
