// What the band did with one browser event, handed to the host in one piece:
// the host cancels or lets the navigation go, shows the strip, and may report
// the rest (the command line prints it, the extension shows it).
#pragma once

#include <cstdint>
#include <string>

#include "check/CheckURL.h"

namespace tarnwick {

// Why an event did not reach the check engine.
enum class NotChecked {
  No,          // it did
  Frame,       // the event came from a frame, not the top-level window
  SamePage,    // the same page up to "#" as the last one checked
  Offline,     // the browser works offline
  Unchanged,   // after the navigation the address is the one checked before it
  NotStarted,  // the band has no working check engine
};
const char* NotCheckedName(NotChecked reason);  // "frame", ...; nullptr for No

struct NavigationRecord {
  std::string url;
  NotChecked notChecked = NotChecked::No;
  // From the check engine: whether the URL went past the scheme and zone
  // tests, the step that objected, the dialog it showed and its answer.
  CheckOutcome outcome;
  bool cancel = false;  // the navigation is stopped
  // After a navigation: the page was replaced by about:PhishingSite.
  bool blockPage = false;
  std::int16_t riskRank = -1;
  std::string lastResponse;
};

// What the band decided about a new window.
enum class PopupDecision {
  Allowed,            // pop-up blocking is off
  AllowedCtrl,        // Ctrl was held
  AllowedTrusted,     // the page on show is in the Trusted Sites zone
  AllowedUserEvent,   // the page was handling an event of the person's
  AllowedActive,      // an element of the page had the focus
  RefusedNoDocument,  // no document on show
  RefusedScript,      // no event and no active element: a script opened it
  NotGuarded,         // the band holds no browser
};
const char* PopupDecisionName(PopupDecision decision);
bool PopupAllowed(PopupDecision decision);

struct PopupRecord {
  PopupDecision decision = PopupDecision::NotGuarded;
  std::string lastResponse;
};

}  // namespace tarnwick
