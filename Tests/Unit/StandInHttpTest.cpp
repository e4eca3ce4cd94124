#include <gmock/gmock.h>
#include <sys/stat.h>

#include "Platform/Linux/SessionFile.h"
#include "Platform/Linux/StandInEngine/Access.h"
#include "Tests/Unit/StandInFixture.h"

namespace tapdeck {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class StandInHttp : public StandInTest {
 protected:
  std::string get(const std::string& path, const std::string& method = "GET") {
    return exchange(method + " " + path, "Connection: close\r\nHost: " + host() + "\r\n");
  }
};

TEST_F(StandInHttp, ServesThePageWithItsHeaders) {
  const std::string page = get("/");
  EXPECT_THAT(page, StartsWith("HTTP/1.1 200"));
  for (const char* line :
       {"Content-Type: text/html; charset=utf-8\r\n", "Cache-Control: no-store\r\n",
        "X-Content-Type-Options: nosniff\r\n", "Referrer-Policy: no-referrer\r\n",
        "Content-Security-Policy: default-src 'none'; script-src 'self'; style-src 'self'; ",
        "frame-ancestors 'none'; base-uri 'none'; form-action 'none'\r\n"}) {
    EXPECT_THAT(page, HasSubstr(line));
  }
  EXPECT_THAT(page, HasSubstr("connect-src 'self' ws://" + host() + ";"));
  EXPECT_THAT(page, HasSubstr("</html>"));
  EXPECT_THAT(get("/index.html"), HasSubstr("</html>"));
  EXPECT_THAT(get("/console.css"), HasSubstr("Content-Type: text/css; charset=utf-8\r\n"));
  EXPECT_THAT(get("/codec.js"), HasSubstr("Content-Type: text/javascript; charset=utf-8\r\n"));
  EXPECT_THAT(get("/", "HEAD"),
              AllOf(StartsWith("HTTP/1.1 200"), HasSubstr("text/html"), Not(HasSubstr("</html>"))));
}

TEST_F(StandInHttp, NothingElseIsServed) {
  for (const char* path :
       {"/nothing", "//", "/index.html/", "/../../../../etc/passwd",
        "/%2e%2e/%2e%2e/%2e%2e/etc/passwd", "/..%2f..%2fetc%2fpasswd", "/%2fetc/passwd",
        "/com/tapdeck/console/index.html", "/index.html%00", "/engine/"}) {
    EXPECT_THAT(get(path), AllOf(StartsWith("HTTP/1.1 404"), HasSubstr("nosniff"))) << path;
  }
  for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS"}) {
    EXPECT_THAT(get("/", method), StartsWith("HTTP/1.1 405")) << method;
  }
}

TEST_F(StandInHttp, OnlyItsOwnHost) {
  const std::string port = std::to_string(this->port());
  const auto statusFor = [&](const std::string& hostLines) {
    return exchange("GET /", "Connection: close\r\n" + hostLines).substr(9, 3);
  };
  EXPECT_EQ(statusFor("Host: 127.0.0.1:" + port + "\r\n"), "200");
  EXPECT_EQ(statusFor("Host: LocalHost:" + port + "\r\n"), "200");
  for (const std::string wrong : {"127.0.0.1", "127.0.0.1:1", "127.0.0.2:", "evil.example:",
                                  "127.0.0.1.evil.example:", "[::1]:"}) {
    const std::string host = wrong.ends_with(":") ? wrong + port : wrong;
    EXPECT_EQ(statusFor("Host: " + host + "\r\n"), "421") << host;
  }
  EXPECT_THAT(statusFor("Host: evil.example\r\nHost: 127.0.0.1:" + port + "\r\n"), StartsWith("4"));
  EXPECT_THAT(statusFor(""), StartsWith("4"));
}

TEST(StandInAccess, HostOfEveryKindOfAddress) {
  const auto isOwn = [](const char* host, const char* local, uint16_t port) {
    const standin::Object<GSocketAddress> address(
        g_inet_socket_address_new_from_string(local, port));
    return standin::isOwnHost(host, address.get());
  };
  EXPECT_TRUE(isOwn("[::1]:8420", "::1", 8420));
  EXPECT_TRUE(isOwn("localhost:8420", "::1", 8420));
  EXPECT_TRUE(isOwn("[2001:DB8::7]:8420", "2001:db8::7", 8420));
  EXPECT_FALSE(isOwn("2001:db8::7:8420", "2001:db8::7", 8420));
  // A phone's page is not served under the name that means the phone itself.
  EXPECT_FALSE(isOwn("localhost:8420", "192.0.2.7", 8420));
  // Browsers leave out the default port.
  EXPECT_TRUE(isOwn("192.0.2.7", "192.0.2.7", 80));
  EXPECT_TRUE(isOwn("192.0.2.7:80", "192.0.2.7", 80));
  EXPECT_FALSE(isOwn("192.0.2.7", "192.0.2.7", 8420));
  EXPECT_FALSE(isOwn(nullptr, "192.0.2.7", 80));
}

TEST_F(StandInHttp, UpgradesOnlyForItsOwnPage) {
  const auto statusFor = [&](const std::string& query, const std::string& lines) {
    return exchange("GET /engine" + query, "Host: " + host() + "\r\n" + upgradeHeaders() + lines)
        .substr(9, 3);
  };
  const std::string right = "?token=" + token();
  const std::string protocol = "Sec-WebSocket-Protocol: tapdeck.engine.v1\r\n";
  const std::string close = "Connection: close\r\n";
  EXPECT_EQ(statusFor(right, protocol), "101");
  EXPECT_EQ(statusFor(right, protocol + "Origin: http://" + host() + "\r\n"), "101");

  std::string wrong = right;
  wrong.back() = wrong.back() == '0' ? '1' : '0';
  const std::string shorter = right.substr(0, right.size() - 1);
  for (const auto& query : {std::string(), std::string("?token="), wrong, shorter, right + "0"}) {
    EXPECT_EQ(statusFor(query, close + protocol), "403") << query;
  }
  for (const std::string origin : {"http://evil.example", "https://127.0.0.1", "null", "http://"}) {
    EXPECT_EQ(statusFor(right, close + protocol + "Origin: " + origin + "\r\n"), "403") << origin;
  }
  EXPECT_EQ(statusFor(right, close + protocol + "Origin: http://" + host() +
                                 "\r\nOrigin: http://evil.example\r\n"),
            "403");
  EXPECT_EQ(statusFor(right, close), "400");
  EXPECT_EQ(statusFor(right, close + "Sec-WebSocket-Protocol: other\r\n"), "400");
  EXPECT_THAT(exchange("GET /engine" + right,
                       close + "Host: evil.example\r\n" + upgradeHeaders() + protocol),
              StartsWith("HTTP/1.1 421"));
  EXPECT_THAT(exchange("GET /engine" + right, close + "Host: " + host() + "\r\n" + protocol),
              StartsWith("HTTP/1.1 400"));
}

TEST_F(StandInHttp, EightConnections) {
  std::vector<std::unique_ptr<Page>> pages;
  for (int i = 0; i < 8; ++i) pages.push_back(openPage());
  const std::string ninth =
      exchange("GET /engine?token=" + token(), "Connection: close\r\nHost: " + host() + "\r\n" +
                                                   upgradeHeaders() +
                                                   "Sec-WebSocket-Protocol: tapdeck.engine.v1\r\n");
  EXPECT_THAT(ninth, StartsWith("HTTP/1.1 503"));
  pages.back()->close();
  ASSERT_TRUE(waitUntil([&] { return engine->peers().size() == 7; }));
  pages.back() = openPage();
}

std::string whyNotStarted(const StandInEngine::Options& options) {
  try {
    StandInEngine::start(options);
  } catch (const StandInEngineError& error) {
    return error.what();
  }
  return "it started";
}

TEST_F(StandInHttp, SaysWhyItCannotStart) {
  const auto session = readSession();
  EXPECT_THAT(
      whyNotStarted({"127.0.0.1", port()}),
      AllOf(HasSubstr("Port " + std::to_string(port()) + " is taken"), HasSubstr("--port")));
  EXPECT_THAT(whyNotStarted({"localhost", 0}), HasSubstr("not an IP address"));
  // A documentation address: no machine has it.
  EXPECT_THAT(whyNotStarted({"192.0.2.1", 0}), HasSubstr("Cannot listen on 192.0.2.1"));
  ASSERT_TRUE(readSession());
  EXPECT_EQ(readSession()->token, session->token);
}

TEST_F(StandInHttp, SessionFile) {
  const auto session = readSession().value();
  EXPECT_EQ(session.pid, getpid());
  EXPECT_EQ(session.token.size(), 32u);
  EXPECT_THAT(
      engine->pageAddresses(),
      ElementsAre("http://127.0.0.1:" + std::to_string(session.port) + "/#" + session.token));
  EXPECT_EQ(session.url, engine->pageAddresses().front());
  struct stat status = {};
  ASSERT_EQ(::stat(sessionFilePath().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600u);

  const auto later = StandInEngine::start({"0.0.0.0", 0});
  EXPECT_NE(readSession()->token, session.token);
  engine.reset();
  ASSERT_TRUE(readSession()) << "an engine took away the file of a later one";
  const auto addresses = later->pageAddresses();
  EXPECT_THAT(addresses.back(), StartsWith("http://127.0.0.1:"));
  EXPECT_EQ(readSession()->url, addresses.back());
  for (const auto& address : addresses) EXPECT_THAT(address, Not(HasSubstr("0.0.0.0:")));
  later->stop();
  EXPECT_FALSE(std::filesystem::exists(sessionFilePath()));
}

}  // namespace
}  // namespace tapdeck
