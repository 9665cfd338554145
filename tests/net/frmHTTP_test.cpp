#include <chrono>

#include "NetFixture.h"
#include "net/HttpAnswer.h"
#include "support/RoutineError.h"

namespace tarnwick::testing {
namespace {

using FrmHttpTest = NetFixture;

// A retrieval component older than RetrieveAsyncReceived: every other member
// goes to the real one.
class WithoutProgress final : public ComponentObject {
 public:
  explicit WithoutProgress(std::shared_ptr<ComponentObject> inner) : inner_(std::move(inner)) {}
  long Invoke(std::string_view member, std::span<Variant> args, Variant& result, std::string& error) override {
    if (member == "RetrieveAsyncReceived") {
      error = "Object doesn't support this property or method";
      return kErrMemberNotFound;
    }
    return inner_->Invoke(member, args, result, error);
  }

 private:
  std::shared_ptr<ComponentObject> inner_;
};

// A dialog whose animation cannot be drawn.
class BrokenDialog final : public DownloadDialog {
 public:
  explicit BrokenDialog(long number) : number_(number) {}
  void Show(std::string_view) override {}
  void Hide() override {}
  bool Visible() const override { return false; }
  void DrawFrame(int) override { throw RoutineError(number_, "Out of memory"); }

 private:
  long number_;
};

// An answer sent in ten pieces a quarter of a second apart.
Reply Trickled(const std::string& body) {
  Reply reply = Reply::Http(200, "OK", body);
  reply.trickleBytes = reply.bytes.size() / 10 + 1;
  reply.trickleMs = 250;
  return reply;
}

TEST_F(FrmHttpTest, APageArrivesWithItsHeadersAndTheAgent) {
  LoopbackServer server([](const Request&) {
    Reply reply = Reply::Http(200, "OK", std::string("body\0bytes\x80", 11),
                              {"Last-Modified: Sun, 22 Nov 2026 10:00:00 GMT", "X-Twice: first", "X-Twice: second",
                               "x-lower: hidden", "X-Tight:packed"});
    // Long enough that the form sees the transfer under way, however busy
    // the machine.
    reply.delayMs = 300;
    return reply;
  });
  Get(server.Base() + "/updates/xss.dat", "If-Modified-Since: Thu, 1 Jan 1970 00:00:00 GMT\r\n");
  EXPECT_EQ(http.HTTPStatus, 200);
  EXPECT_EQ(http.ResponseText, std::string("body\0bytes\x80", 11));
  EXPECT_TRUE(http.ResponseHeaders.starts_with("HTTP/1.1 200 OK\r\n"));
  EXPECT_EQ(http.GetHeader("Last-Modified"), "Sun, 22 Nov 2026 10:00:00 GMT");
  EXPECT_EQ(http.GetHeader("last-modified"), "");  // names are case-sensitive
  EXPECT_EQ(http.GetHeader("X-Twice"), "first");   // the first match wins
#ifdef _WIN32
  EXPECT_EQ(http.GetHeader("X-Tight"), "packed");  // WinINet hands lines back as "Name: value"
#else
  EXPECT_EQ(http.GetHeader("X-Tight"), "acked");  // one character after the colon is skipped
#endif
  EXPECT_EQ(http.GetHeader("HTTP/1.1 200 OK"), "");
  EXPECT_EQ(http.GetHeader("OK"), "");  // the status line is never searched

  const Request request = server.Requests().at(0);
  EXPECT_EQ(request.Header("User-Agent"), "Tarnwick Toolbar (v1.0.0)");
  EXPECT_EQ(request.Header("If-Modified-Since"), "Thu, 1 Jan 1970 00:00:00 GMT");
  EXPECT_TRUE(Logged("(debug) (Start_Download) GET " + server.Base() + "/updates/xss.dat"));
  EXPECT_TRUE(Logged("(debug) (frmHTTP) Status changed: 4"));
  EXPECT_TRUE(Logged("(debug) (frmHTTP) Status changed: 2"));
  EXPECT_TRUE(Logged("(debug) (Wait_Download) Allocated buffer of size 11"));
}

TEST_F(FrmHttpTest, ErrorAnswersCarryTheStatusAndTheServersText) {
  LoopbackServer server([](const Request& request) {
    if (request.target == "/blocked") return Reply::Http(403, "Forbidden", "Known phishing site");
    if (request.target == "/same") return Reply::Http(304, "Not Modified", "");
    if (request.target == "/moved") return Reply::Http(302, "Found", "", {"Location: /blocked"});
    return Reply::Http(500, "Internal Server Error", "");
  });
  const std::pair<const char*, std::pair<int, const char*>> cases[] = {
      {"/blocked", {403, "Known phishing site"}},
      {"/same", {304, "Not Modified"}},
      {"/moved", {403, "Known phishing site"}},  // redirects are followed
      {"/broken", {500, "Internal Server Error"}},
  };
  for (const auto& [path, expected] : cases) {
    Get(server.Base() + path);
    EXPECT_EQ(http.HTTPStatus, expected.first) << path;
    EXPECT_EQ(http.ResponseText, expected.second) << path;
  }
}

TEST_F(FrmHttpTest, TransportFailuresAreNumberedOutsideHttpStatuses) {
  LoopbackServer server([](const Request& request) {
    Reply reply;
    if (request.target == "/drop") reply.drop = true;
    if (request.target == "/half") reply.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly part";
    if (request.target == "/garbage") reply.bytes = "SMTP ready\r\n\r\n";
    return reply;
  });
  for (const char* path : {"/drop", "/half", "/garbage"}) {
    Get(server.Base() + path);
    EXPECT_GT(http.HTTPStatus, 999) << path;
    EXPECT_FALSE(http.ResponseText.empty()) << path;
  }
  int port = 0;
  {
    LoopbackServer closed([](const Request&) { return Reply{}; });
    port = std::stoi(closed.Base().substr(closed.Base().rfind(':') + 1));
  }
  Get("http://127.0.0.1:" + std::to_string(port) + "/");
#ifdef _WIN32
  EXPECT_EQ(http.HTTPStatus, 12029);  // WinINet's "cannot connect"
#else
  EXPECT_EQ(http.HTTPStatus, 1007);               // 1000 + libcurl's "couldn't connect"
#endif
  EXPECT_NE(http.ResponseText.find("onnect"), std::string::npos) << http.ResponseText;
}

TEST_F(FrmHttpTest, RefusedRequestsAndUnknownMethodsFailAtOnceWithMinusOne) {
  Get("http://exa mple.com/");
  EXPECT_EQ(http.HTTPStatus, -1);
  EXPECT_TRUE(http.ResponseText.starts_with("Invalid URL")) << http.ResponseText;

  Get("ftp://example.com/file");
  EXPECT_EQ(http.HTTPStatus, -1);
  EXPECT_EQ(http.ResponseText, "Unsupported protocol: ftp");

  Get("http://127.0.0.1:9/", "Bad header without colon\r\n");
  EXPECT_EQ(http.HTTPStatus, -1);
  EXPECT_EQ(http.ResponseText, "Invalid request header: Bad header without colon");

  http.Start_Download(false, "get", "http://127.0.0.1:9/", "agent", "", "", "");
  EXPECT_EQ(http.HTTPStatus, -1);
  EXPECT_TRUE(Logged("Start_Download: Method 'get' not recognised"));

  http.ComponentReady = false;
  http.HTTPStatus = 123;
  http.ResponseText = "kept";
  Get("http://127.0.0.1:9/");
  EXPECT_EQ(http.HTTPStatus, -1);
  EXPECT_EQ(http.ResponseText, "kept");
}

TEST_F(FrmHttpTest, PostSendsItsData) {
  LoopbackServer server([](const Request& request) { return Reply::Http(200, "OK", "got " + request.body); });
  http.Start_Download(false, "POST", server.Base() + "/report", "agent", "", "name=a&reason=b", "");
  EXPECT_EQ(http.HTTPStatus, 200);
  EXPECT_EQ(http.ResponseText, "got name=a&reason=b");
  EXPECT_EQ(server.Requests().at(0).method, "POST");
}

TEST_F(FrmHttpTest, TheTimeOutFallsWhenRoundedSecondsExceedTheSetting) {
  LoopbackServer server([](const Request&) {
    Reply reply;
    reply.stall = true;
    return reply;
  });
  // Every poll moves the clock on by one second: 5 seconds are still
  // within a ServerTimeout of 5, the 6th is not.
  ui.onDoEvents = [this] { clock.offsetSeconds += 1; };
  Get(server.Base() + "/stall");
  EXPECT_EQ(http.HTTPStatus, 504);
  EXPECT_EQ(http.ResponseText, "Timeout");
  EXPECT_EQ(http.ResponseHeaders, "");
  EXPECT_TRUE(Logged("(frmHTTP) Cancelling download of " + server.Base() + "/stall after 6 seconds (exceeded 5)"));
}

TEST_F(FrmHttpTest, StalledServersAndUnansweredHandshakesEndWithinOneSecondOfTheTimeOut) {
  options.ServerTimeout = 1;
  LoopbackServer server([](const Request&) {
    Reply reply;
    reply.stall = true;
    return reply;
  });
  SilentPort silent;
  for (const std::string& url : {server.Base() + "/", silent.Base() + "/"}) {
    const auto start = std::chrono::steady_clock::now();
    Get(url);
    const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_EQ(http.HTTPStatus, 504) << url;
    EXPECT_LT(seconds, 2.0) << url;
  }
}

TEST_F(FrmHttpTest, ATransferThatKeepsReceivingOutlastsTheTimeOut) {
  options.ServerTimeout = 1;
  const std::string body(4000, 'b');
  LoopbackServer server([&body](const Request&) { return Trickled(body); });
  const auto start = std::chrono::steady_clock::now();
  Get(server.Base() + "/component");
  EXPECT_EQ(http.HTTPStatus, 200);
  EXPECT_EQ(http.ResponseText, body);
  // The trickle itself took longer than the time-out allows a silent server.
  EXPECT_GT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 2.0);

  // A component that cannot tell its progress is timed from the request.
  http.pageFetch = std::make_shared<WithoutProgress>(http.pageFetch);
  Get(server.Base() + "/component");
  EXPECT_EQ(http.HTTPStatus, 504);
  EXPECT_EQ(http.ResponseText, "Timeout");
}

TEST_F(FrmHttpTest, SilenceAfterTheFirstBytesTimesOut) {
  options.ServerTimeout = 1;
  LoopbackServer server([](const Request&) {
    Reply reply;
    reply.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly part";
    reply.stall = true;
    return reply;
  });
  Get(server.Base() + "/stalls");
  EXPECT_EQ(http.HTTPStatus, 504);
  EXPECT_EQ(http.ResponseText, "Timeout");
  EXPECT_TRUE(Logged("(frmHTTP) Cancelling download of " + server.Base() + "/stalls after 2 seconds (exceeded 1)"));
}

TEST_F(FrmHttpTest, CancelEndsATransferThatKeepsReceiving) {
  LoopbackServer server([](const Request&) { return Trickled(std::string(4000, 'b')); });
  int polls = 0;
  ui.onDoEvents = [&] {
    if (++polls == 3 && dialog.Visible()) dialog.onCancel();
  };
  http.Start_Download(true, "GET", server.Base() + "/component", "agent", "", "", "");
  EXPECT_EQ(http.HTTPStatus, 504);
  EXPECT_EQ(http.ResponseText, "Timeout");
}

TEST_F(FrmHttpTest, CancelEndsTheWaitThroughTheTimeOut) {
  LoopbackServer server([](const Request&) {
    Reply reply;
    reply.stall = true;
    return reply;
  });
  ui.onDoEvents = [this] {
    if (dialog.Visible() && dialog.onCancel) dialog.onCancel();
  };
  http.Start_Download(true, "GET", server.Base() + "/slow", "agent", "", "", "");
  EXPECT_EQ(dialog.messages, std::vector<std::string>{"Checking for updates to Tarnwick Toolbar"});
  EXPECT_FALSE(dialog.Visible());
  EXPECT_TRUE(Logged("Download of " + server.Base() + "/slow cancelled at user request"));
  // The wait finds the time-out exceeded and ends the transfer itself.
  EXPECT_EQ(http.HTTPStatus, 504);
  EXPECT_EQ(http.ResponseText, "Timeout");
}

TEST_F(FrmHttpTest, TheDialogShowsTheCaptionAndAnimatesWhileWaiting) {
  LoopbackServer server([](const Request&) {
    Reply reply = Reply::Http(200, "OK", "late");
    reply.delayMs = 800;
    return reply;
  });
  http.Start_Download(true, "GET", server.Base() + "/", "agent", "", "", "Checking the site");
  EXPECT_EQ(http.HTTPStatus, 200);
  EXPECT_EQ(dialog.messages, std::vector<std::string>{"Checking the site"});
  EXPECT_FALSE(dialog.Visible());
  EXPECT_GE(dialog.frames.size(), 2u);  // frame 0 at load, then at least one tick
}

TEST_F(FrmHttpTest, LoadErrorsAreLoggedShownWithDebugAndTheComponentStillLoads) {
  for (const long number : {7L, 70L}) {
    BrokenDialog broken(number);
    frmHTTP form{ports, broken};
    ui.shown.clear();
    form.Form_Load();
    EXPECT_TRUE(form.ComponentReady) << number;
    EXPECT_TRUE(
        Logged("(debug) An error occurred while loading frmHTTP: Out of memory (" + std::to_string(number) + ")"));
    // Permission denied (70) is never shown.
    ASSERT_EQ(ui.shown.size(), number == 70 ? 0u : 1u) << number;
    if (number != 70) {
      EXPECT_EQ(ui.shown[0].title, "Tarnwick Toolbar Debugging");
    }
  }
}

TEST_F(FrmHttpTest, StartDownloadErrorsAreLoggedAndShownWithDebug) {
  http.pageFetch.reset();
  Get("http://127.0.0.1:9/x");
  const std::string text =
      "Failed to update from URL (http://127.0.0.1:9/x): Object variable or With block variable not set (91)";
  EXPECT_TRUE(Logged(text));
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_EQ(ui.shown[0].text, text);
  EXPECT_EQ(ui.shown[0].title, "Tarnwick Toolbar Debugging");
}

TEST(HttpAnswer, AnErrorAnswerIsANumberABlankAndText) {
  const ErrorAnswer answer = ReadErrorAnswer("404 Not Found");
  EXPECT_EQ(answer.status, 404);
  EXPECT_EQ(answer.text, "Not Found");
  EXPECT_EQ(ReadErrorAnswer("1007 Couldn't connect: a b").text, "Couldn't connect: a b");
  const std::pair<const char*, long> malformed[] = {{"Forbidden", 5}, {"70000 big", 6}, {"abc def", 13}, {" x", 13}};
  for (const auto& [text, number] : malformed) {
    try {
      ReadErrorAnswer(text);
      ADD_FAILURE() << text;
    } catch (const RoutineError& error) {
      EXPECT_EQ(error.number(), number) << text;
    }
  }
  EXPECT_EQ(HeaderValue("HTTP/1.1 200 OK\r\nA: 1\r\nA:2", "A"), "1");
  EXPECT_EQ(HeaderValue("A: status line only", "A"), "");
}

TEST_F(FrmHttpTest, WithoutTheComponentFileTransfersStayDisabled) {
  std::filesystem::remove(paths.program / "pagefetch.dll");
  frmHTTP fresh{ports, dialog};
  fresh.Form_Load();
  EXPECT_FALSE(fresh.ComponentReady);
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_EQ(ui.shown[0].text,
            "Your copy of Tarnwick Toolbar is too old.\r\nYou will need to uninstall it using the Control Panel, "
            "then download\r\nand install the latest version from http://127.0.0.1:9/install/");
}

}  // namespace
}  // namespace tarnwick::testing
