// What the server learns from the questions it is asked, and how little of
// it one client can decide.
#include <gtest/gtest.h>

#include "server/Observations.h"

namespace tarnwick::server {
namespace {

using Clock = AddressWitnesses::Clock;

TEST(Observations, TheSeenHostsAreBoundedInBytes) {
  const auto longHost = [](char first) { return first + std::string(240, 'a') + ".example"; };
  Observations seen(3 * (longHost('1').size() + Observations::kHostOverheadBytes));
  for (const char first : {'1', '2', '3'}) EXPECT_FALSE(seen.NoteHost(longHost(first)));
  for (const char first : {'1', '2', '3'}) EXPECT_TRUE(seen.NoteHost(longHost(first)));
  EXPECT_FALSE(seen.NoteHost(longHost('4')));
  EXPECT_FALSE(seen.NoteHost(longHost('4')));  // did not fit, so still never seen
  EXPECT_FALSE(seen.NoteHost("short.example"));
  EXPECT_FALSE(seen.NoteHost("short.example"));
}

TEST(AddressWitnesses, APairIsBelievedWhenThreeClientsSayIt) {
  AddressWitnesses witnesses;
  const auto now = Clock::now();
  for (int i = 0; i < 100; ++i) EXPECT_FALSE(witnesses.Report(1, "evil.example", "192.0.2.1", now));
  EXPECT_FALSE(witnesses.Report(1, "evil.example", "192.0.2.2", now));
  EXPECT_FALSE(witnesses.Report(2, "evil.example", "192.0.2.3", now));   // another address
  EXPECT_FALSE(witnesses.Report(1, "other.example", "192.0.2.3", now));  // another host
  EXPECT_TRUE(witnesses.Report(1, "evil.example", "192.0.2.3", now));
}

TEST(AddressWitnesses, OneMachineIsOneWitnessWhateverItsIpv6Address) {
  EXPECT_EQ(ClientNetwork("2001:db8:1:2:aaaa::1"), "2001:db8:1:2::/64");
  EXPECT_EQ(ClientNetwork("203.0.113.9"), "203.0.113.9");
  AddressWitnesses witnesses;
  const auto now = Clock::now();
  EXPECT_FALSE(witnesses.Report(1, "evil.example", "2001:db8:1:2::1", now));
  EXPECT_FALSE(witnesses.Report(1, "evil.example", "2001:db8:1:2::2", now));
  EXPECT_FALSE(witnesses.Report(1, "evil.example", "2001:db8:1:2:ffff::3", now));
  EXPECT_FALSE(witnesses.Report(1, "evil.example", "2001:db8:1:3::1", now));
  EXPECT_TRUE(witnesses.Report(1, "evil.example", "2001:db8:1:4::1", now));
}

TEST(AddressWitnesses, EachClientPutsForwardOnlyAFewNewPairsAMinute) {
  AddressWitnesses witnesses;
  const auto now = Clock::now();
  const auto allowed = static_cast<std::uint32_t>(AddressWitnesses::kNewPairsPerMinute);
  for (std::uint32_t address = 1; address <= allowed + 1; ++address) {
    witnesses.Report(address, "evil.example", "192.0.2.1", now);
  }
  // The first pairs count the flooding client as a witness; the one past
  // its allowance does not.
  EXPECT_FALSE(witnesses.Report(1, "evil.example", "192.0.2.2", now));
  EXPECT_TRUE(witnesses.Report(1, "evil.example", "192.0.2.3", now));
  EXPECT_FALSE(witnesses.Report(allowed + 1, "evil.example", "192.0.2.2", now));
  EXPECT_FALSE(witnesses.Report(allowed + 1, "evil.example", "192.0.2.3", now));

  // A minute later it may again.
  const auto later = now + std::chrono::minutes(1);
  EXPECT_TRUE(witnesses.Report(allowed + 1, "evil.example", "192.0.2.1", later));
}

}  // namespace
}  // namespace tarnwick::server
