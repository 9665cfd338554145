// frmHTTP: the one download form every HTTP exchange goes through. It hands
// the request to the retrieval component, waits (letting the host's events
// run and sleeping on the transfer's sockets between polls), applies the
// ServerTimeout setting, and leaves status, header block and body for the
// caller to read.
#pragma once

#include <cstdint>
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
  void ReportWaitError(long number, const std::string& description);

  NetPorts ports_;
  DownloadDialog& dialog_;
  double startTime_ = 0;
  bool animating_ = false;
  double nextFrameTime_ = 0;
  int currentFrame_ = 0;
};

}  // namespace tarnwick
