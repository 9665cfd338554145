// frmHTTP: the one download form every HTTP exchange goes through. It hands
// the request to the retrieval component, waits (letting the host's events
// run and sleeping on the transfer's sockets between polls), applies the
// ServerTimeout setting, and leaves status, header block and body for the
// caller to read. The time-out bounds reaching the server and silence: a
// component that reports the bytes it has received (RetrieveAsyncReceived)
// keeps a transfer going for as long as bytes keep coming, up to its own
// limits; with one that does not, it bounds the whole transfer.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "net/NetPorts.h"
#include "support/ComponentObject.h"
#include "ui/DownloadDialog.h"

namespace tarnwick {

class frmHTTP {
 public:
  frmHTTP(NetPorts ports, DownloadDialog& dialog);

  // Swaps in a downloaded retrieval component and marks transfers ready;
  // without pagefetch.dll in the program folder it tells the person the
  // installation is too old and transfers stay disabled.
  void Form_Load();
  void Form_Unload();

  void Start_Download(bool ShowDialog, std::string_view Method, std::string_view URL, std::string_view Agent,
                      std::string_view Headers, std::string_view PostData, std::string_view Caption);
  // The value of the first header line "Name: value" (exact case); the status
  // line is never searched.
  std::string GetHeader(std::string_view Name);

  void cmdCancel_Click();
  void Start_Animation();
  void Stop_Animation();

  // Results of the last transfer.
  std::int16_t HTTPStatus = 0;
  std::string ResponseText;
  std::string ResponseHeaders;
  std::string URL;
  bool ComponentReady = false;

  // The shared retrieval component, created by the band after Form_Load.
  std::shared_ptr<ComponentObject> pageFetch;

  static constexpr int kFrameCount = 16;
  static constexpr double kAnimationSeconds = 0.3;
  // Longest sleep on the sockets between two polls: short enough that a
  // time-out or a Cancel is seen within a quarter of a second.
  static constexpr std::int32_t kPollMilliseconds = 250;

 private:
  void Wait_Download();
  void AnimationTick();
  void FinishWithAnswer(std::int32_t state);
  // Logs a routine's failure in the event log, and shows it with Debug on.
  void ReportError(const std::string& text);
  // Runs one part of Form_Load under the form's load-error trap.
  void TrapLoadError(const std::function<void()>& step);

  NetPorts ports_;
  DownloadDialog& dialog_;
  // When the request was issued, moved on by every byte received; 0 after a
  // cancel, which then stays.
  double startTime_ = 0;
  bool cancelled_ = false;
  bool animating_ = false;
  double nextFrameTime_ = 0;
  int currentFrame_ = 0;
};

}  // namespace tarnwick
