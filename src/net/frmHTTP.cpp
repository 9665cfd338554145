#include "net/frmHTTP.h"

#include <cmath>
#include <optional>
#include <vector>

#include "ProductInfo.h"
#include "net/HttpAnswer.h"
#include "net/PageFetch.h"
#include "net/mdlUpdate.h"
#include "support/DateTime.h"
#include "support/Files.h"

namespace tarnwick {
namespace {

std::string DebuggingTitle() { return std::string(product::kFileDescription) + " Debugging"; }

// "Permission denied": the one load error not worth a message box.
constexpr long kErrPermissionDenied = 70;

}  // namespace

frmHTTP::frmHTTP(NetPorts ports, DownloadDialog& dialog) : ports_(ports), dialog_(dialog) {
  dialog_.onCancel = [this] { cmdCancel_Click(); };
}

void frmHTTP::Form_Load() {
  // The animation and the component are loaded apart: a failure in the first
  // still lets transfers work.
  TrapLoadError([this] {
    currentFrame_ = 0;
    dialog_.DrawFrame(currentFrame_);
  });
  TrapLoadError([this] {
    RecoverPageFetchSwap(ports_);
    if (!FileExists(ports_.paths.ProgramFolder() / "pagefetch.dll")) {
      ports_.ui.MessageBox("Your copy of " + std::string(product::kFileDescription) + " is too old.\r\n" +
                               "You will need to uninstall it using the Control Panel, then download\r\n" +
                               "and install the latest version from " + ports_.endpoints.server + "/install/",
                           product::kFileDescription, vbOKOnly);
      return;
    }
    SwapPageFetch(ports_);
    ComponentReady = true;
  });
}

void frmHTTP::TrapLoadError(const std::function<void()>& step) {
  try {
    step();
  } catch (const std::exception& error) {
    const std::string text = "An error occurred while loading frmHTTP: " + DescribeError(error);
    ports_.log.DebugLog(text);
    if (ports_.options.Debug && ErrorNumber(error) != kErrPermissionDenied) {
      ports_.ui.MessageBox(text, DebuggingTitle(), vbExclamation);
    }
  }
}

void frmHTTP::Form_Unload() {
  Stop_Animation();
  pageFetch.reset();
}

void frmHTTP::Start_Animation() {
  animating_ = true;
  nextFrameTime_ = ports_.clock.Now() + kAnimationSeconds / kSecondsPerDay;
}

void frmHTTP::Stop_Animation() { animating_ = false; }

void frmHTTP::AnimationTick() {
  if (!animating_ || ports_.clock.Now() < nextFrameTime_) return;
  dialog_.DrawFrame(currentFrame_);
  currentFrame_ = (currentFrame_ + 1) % kFrameCount;
  nextFrameTime_ = ports_.clock.Now() + kAnimationSeconds / kSecondsPerDay;
}

void frmHTTP::Start_Download(bool ShowDialog, std::string_view Method, std::string_view URL_, std::string_view Agent,
                             std::string_view Headers, std::string_view PostData, std::string_view Caption) {
  ports_.log.DebugLog("(Start_Download) " + std::string(Method) + " " + std::string(URL_));
  if (!ComponentReady) {
    HTTPStatus = -1;
    return;
  }
  try {
    const std::string message =
        Caption.empty() ? "Checking for updates to " + std::string(product::kFileDescription) : std::string(Caption);
    URL = URL_;
    ResponseText.clear();
    ResponseHeaders.clear();
    HTTPStatus = 0;
    startTime_ = ports_.clock.Now();
    cancelled_ = false;

    if (!pageFetch) throw RoutineError(91, "Object variable or With block variable not set");
    PageFetch component(*pageFetch);
    std::string answer;
    if (Method == "GET") {
      answer = component.RetrieveAsync(URL, std::string(Agent), std::string(Headers));
    } else if (Method == "POST") {
      answer = component.RetrieveAsyncPost(URL, std::string(Agent), std::string(Headers), std::string(PostData));
    } else {
      HTTPStatus = -1;
      ports_.log.WriteLog("Start_Download: Method '" + std::string(Method) + "' not recognised");
      return;
    }
    if (answer != "ok") {
      HTTPStatus = -1;
      ResponseText = answer;
      return;
    }
    if (ShowDialog) {
      dialog_.Show(message);
      Start_Animation();
      Wait_Download();
      Stop_Animation();
      if (dialog_.Visible()) dialog_.Hide();
    } else {
      Wait_Download();
    }
  } catch (const std::exception& error) {
    ReportError("Failed to update from URL (" + URL + "): " + DescribeError(error));
  }
}

void frmHTTP::Wait_Download() {
  try {
    PageFetch component(*pageFetch);
    std::int32_t previous = -1;
    // While the component can say how much has arrived, every byte moves the
    // start of the time-out on: it bounds silence, not the whole transfer.
    std::optional<std::int32_t> received = 0;
    for (;;) {
      ports_.ui.DoEvents();
      AnimationTick();
      const std::int32_t state = component.RetrieveAsyncCompleted(URL);
      if (state != previous) {
        ports_.log.DebugLog("(frmHTTP) Status changed: " + std::to_string(state));
        previous = state;
      }
      if (state == 4) {
        if (received) {
          const auto now = component.RetrieveAsyncReceived(URL);
          if (now && *now != *received && !cancelled_) startTime_ = ports_.clock.Now();
          received = now;
        }
        const auto elapsed = static_cast<long long>(std::nearbyint((ports_.clock.Now() - startTime_) * kSecondsPerDay));
        if (elapsed > ports_.options.ServerTimeout) {
          ports_.log.DebugLog("(frmHTTP) Cancelling download of " + URL + " after " + std::to_string(elapsed) +
                              " seconds (exceeded " + std::to_string(ports_.options.ServerTimeout) + ")");
          component.RetrieveAsyncFinish(URL);
          HTTPStatus = 504;
          ResponseText = "Timeout";
          Stop_Animation();
          if (dialog_.Visible()) dialog_.Hide();
          return;
        }
      }
      if (state != 0 && state != 1 && state != 4) {
        FinishWithAnswer(state);
        return;
      }
      component.RetrieveAsyncWait(kPollMilliseconds);
    }
  } catch (const std::exception& error) {
    ReportError("Failed to download URL (" + URL + "): " + DescribeError(error));
  }
}

void frmHTTP::FinishWithAnswer(std::int32_t state) {
  PageFetch component(*pageFetch);
  Stop_Animation();
  ResponseHeaders = component.RetrieveAsyncHeaders(URL);
  const std::int32_t size = component.RetrieveAsyncPageSize(URL);
  if (size > 0) {
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(size));
    ports_.log.DebugLog("(Wait_Download) Allocated buffer of size " + std::to_string(size));
    component.RetrieveAsyncPage(URL, buffer);
    ResponseText.assign(buffer.begin(), buffer.end());
  }
  if (state == 2) {
    HTTPStatus = 200;
  } else if (size > 0) {
    ErrorAnswer answer;
    try {
      answer = ReadErrorAnswer(ResponseText);
    } catch (const RoutineError&) {
      // The answer stays with the component until its URL is used again.
      component.RetrieveAsyncFinish(URL);
      throw;
    }
    HTTPStatus = answer.status;
    ResponseText = std::move(answer.text);
  } else {
    HTTPStatus = -1;
    ResponseText.clear();
  }
  component.RetrieveAsyncFinish(URL);
  if (dialog_.Visible()) dialog_.Hide();
}

void frmHTTP::ReportError(const std::string& text) {
  ports_.log.WriteLog(text);
  if (ports_.options.Debug) ports_.ui.MessageBox(text, DebuggingTitle(), vbExclamation);
}

std::string frmHTTP::GetHeader(std::string_view Name) {
  try {
    return HeaderValue(ResponseHeaders, Name);
  } catch (const std::exception& error) {
    ports_.log.DebugLog("(GetHeader) " + std::string(error.what()) + "(" + std::to_string(ErrorNumber(error)) + ")");
    return {};
  }
}

void frmHTTP::cmdCancel_Click() {
  Stop_Animation();
  HTTPStatus = 504;
  ResponseText = "Cancelled at user request";
  startTime_ = 0;
  cancelled_ = true;
  ports_.log.WriteLog("Download of " + URL + " cancelled at user request");
  if (dialog_.Visible()) dialog_.Hide();
}

}  // namespace tarnwick
