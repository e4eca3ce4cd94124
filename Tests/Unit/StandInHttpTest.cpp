#include <gmock/gmock.h>

#include "Platform/Linux/StandInEngine/Access.h"
#include "Tests/Unit/StandInFixture.h"

namespace tapdeck {
namespace {

using namespace ::testing;

class StandInHttp : public StandInTest {
 protected:
  std::string get(const std::string& path, const std::string& method = "GET") {
    return exchange(method + " " + path, "Host: " + host() + "\r\n");
  }
};

TEST_F(StandInHttp, ServesThePageWithItsHeaders) {
  const std::string page = get("/");
  EXPECT_THAT(page, StartsWith("HTTP/1.1 200"));
  const std::string parts[] = {
      "Content-Type: text/html; charset=utf-8\r\n",
      "Cache-Control: no-cache\r\n",
      "Connection: close\r\n",
      "Cross-Origin-Resource-Policy: same-origin\r\n",
      "Referrer-Policy: no-referrer\r\n",
      "Content-Security-Policy: default-src 'none'; script-src 'self'; style-src 'self'; ",
      "manifest-src 'self'; ",
      "frame-ancestors 'none'; base-uri 'none'; form-action 'none'\r\n",
      "</html>"};
  for (const auto& part : parts) EXPECT_THAT(page, HasSubstr(part));
  EXPECT_THAT(get("/index.html"), HasSubstr("</html>"));
  EXPECT_THAT(get("/", "HEAD"),
              AllOf(StartsWith("HTTP/1.1 200"), HasSubstr("text/html"), Not(HasSubstr("</html>"))));
}

TEST_F(StandInHttp, WhatTheBrowserHoldsIsNotSentAgain) {
  const auto page = [&](const std::string& headers) {
    return exchange("GET /", "Connection: close\r\nHost: " + host() + "\r\n" + headers);
  };
  const auto tagOf = [](const std::string& answer) {
    const size_t start = answer.find("ETag: ") + 6;
    return answer.substr(start, answer.find("\r\n", start) - start);
  };
  const std::string plain = page("");
  const std::string packed = page("Accept-Encoding: br, gzip\r\n");
  EXPECT_THAT(plain, AllOf(HasSubstr("Vary: Accept-Encoding\r\n"), Not(HasSubstr("gzip"))));
  EXPECT_THAT(packed, AllOf(HasSubstr("Content-Encoding: gzip\r\n"), Not(HasSubstr("</html>"))));
  EXPECT_LT(packed.size(), plain.size() / 2);
  EXPECT_NE(tagOf(plain), tagOf(packed));
  EXPECT_THAT(page("If-None-Match: \"0\", W/" + tagOf(plain) + "\r\n"),
              AllOf(StartsWith("HTTP/1.1 304"), Not(HasSubstr("</html>"))));
  EXPECT_THAT(page("Accept-Encoding: gzip;q=0\r\nIf-None-Match: " + tagOf(packed) + "\r\n"),
              AllOf(StartsWith("HTTP/1.1 200"), HasSubstr("</html>")));
}

TEST_F(StandInHttp, NothingElseIsServed) {
  const std::string paths[] = {"//", "/index.html/", "/../../../../etc/passwd",
                               "/%2e%2e/%2e%2e/%2e%2e/etc/passwd",
                               "/com/tapdeck/console/index.html", "/index.html%00", "/engine/",
                               // what a normal form of would be served
                               "/%69ndex.html", "/./index.html", "/x/../index.html", "//index.html",
                               "/?x", "http://" + host() + "/", enginePath().replace(1, 1, "%65")};
  for (const auto& path : paths) {
    EXPECT_THAT(get(path), AllOf(StartsWith("HTTP/1.1 404"), HasSubstr("nosniff"))) << path;
  }
  EXPECT_THAT(get("/", "POST"), StartsWith("HTTP/1.1 405"));

  RawClient slow(port());
  const std::string parts[] = {"GET /ind", "ex.html HT", "TP/1.1\n", "Host: " + host() + "\n\n"};
  for (const auto& part : parts) {
    ASSERT_TRUE(slow.write(part));
    runFor(std::chrono::milliseconds(20));
  }
  EXPECT_TRUE(eventually([&] { return !slow.read(); }));
  EXPECT_THAT(slow.received(), StartsWith("HTTP/1.1 200"));
}

TEST_F(StandInHttp, OnlyItsOwnHost) {
  const auto statusFor = [&](const std::string& hostLines) {
    return exchange("GET /", "Connection: close\r\n" + hostLines).substr(9, 3);
  };
  const std::string port = ":" + std::to_string(this->port());
  EXPECT_EQ(statusFor("Host: LocalHost" + port + "\r\n"), "200");
  for (const std::string& wrong : {std::string("127.0.0.1"), std::string("127.0.0.1:1"),
                                   "127.0.0.2" + port, "127.0.0.1.evil.example" + port}) {
    EXPECT_EQ(statusFor("Host: " + wrong + "\r\n"), "421") << wrong;
  }
  EXPECT_THAT(statusFor("Host: evil.example\r\nHost: 127.0.0.1" + port + "\r\n"), StartsWith("4"));
  EXPECT_THAT(statusFor(""), StartsWith("4"));
}

TEST(StandInAccess, HostOfEveryKindOfAddress) {
  const auto isOwn = [](const char* host, const char* local, uint16_t port) {
    const glib::Object<GSocketAddress> address(g_inet_socket_address_new_from_string(local, port));
    return standin::isOwnHost(host, address.get());
  };
  EXPECT_TRUE(isOwn("[::1]:8420", "::1", 8420));
  EXPECT_TRUE(isOwn("[2001:DB8::7]:8420", "2001:db8::7", 8420));
  EXPECT_FALSE(isOwn("2001:db8::7:8420", "2001:db8::7", 8420));
  // A phone's page is not served under the name that means the phone itself.
  EXPECT_FALSE(isOwn("localhost:8420", "192.0.2.7", 8420));
  // Browsers leave out the default port.
  EXPECT_TRUE(isOwn("192.0.2.7", "192.0.2.7", 80));
  EXPECT_TRUE(isOwn("192.0.2.7:80", "192.0.2.7", 80));
  EXPECT_FALSE(isOwn(nullptr, "192.0.2.7", 80));
}

TEST_F(StandInHttp, UpgradesOnlyForItsOwnPage) {
  const std::string right = enginePath();
  const std::string bare = right.substr(0, right.find("?token="));
  const std::string shorter = right.substr(0, right.size() - 1);
  const std::string other = shorter + (right.ends_with("0") ? "1" : "0");
  const std::string own = "Host: " + host() + "\r\n";
  const std::string proper = own + kUpgrade + kProtocol;
  const std::string origin = proper + "Origin: http://" + host() + "\r\n";
  const auto statusFor = [&](const std::string& path, const std::string& headers) {
    return exchange("GET " + path, headers).substr(9, 3);
  };
  EXPECT_EQ(statusFor(right, proper), "101");
  EXPECT_EQ(statusFor(right, origin), "101");

  const std::string close = "Connection: close\r\n";
  for (const auto& path : {bare, bare + "?token=", other, shorter, right + "0"}) {
    EXPECT_EQ(statusFor(path, close + proper), "403") << path;
  }
  for (const std::string& headers :
       {proper + "Origin: https://127.0.0.1", proper + "Origin: null", proper + "Origin: http://",
        origin + "Origin: http://evil.example"}) {
    EXPECT_EQ(statusFor(right, close + headers + "\r\n"), "403") << headers;
  }
  for (const std::string& headers :
       {own + kUpgrade, own + kUpgrade + "Sec-WebSocket-Protocol: other\r\n", own + kProtocol}) {
    EXPECT_EQ(statusFor(right, close + headers), "400") << headers;
  }
  EXPECT_EQ(statusFor(right, close + "Host: evil.example\r\n" + kUpgrade + kProtocol), "421");
}

TEST_F(StandInHttp, EightConnections) {
  std::vector<std::unique_ptr<Page>> pages;
  for (int i = 0; i < 8; ++i) pages.push_back(openPage());
  EXPECT_THAT(exchange("GET " + enginePath(),
                       "Connection: close\r\nHost: " + host() + "\r\n" + kUpgrade + kProtocol),
              StartsWith("HTTP/1.1 503"));
  pages.back()->close();
  ASSERT_TRUE(waitForPeers(7));
  pages.back() = openPage();
}

TEST_F(StandInHttp, ListensInTheNetworkAndStopsAgain) {
  // this computer by another of its addresses, in the place of a network's
  const auto there = [this] { return "127.0.0.2:" + std::to_string(port()); };
  const auto token = enginePath();
  const auto stays = openPage();
  const uint16_t before = port();
  engine->listenOn("0.0.0.0");
  EXPECT_EQ(port(), before);
  Page guest("ws://" + there() + token);
  ASSERT_TRUE(guest.isOpen());
  ASSERT_TRUE(waitForPeers(2));
  engine->listenOn("127.0.0.1");
  EXPECT_EQ(guest.waitForClose(), 4003);
  EXPECT_TRUE(stays->isOpen());
  EXPECT_EQ(engine->peers().size(), 1u);
  const Page late("ws://" + there() + token);
  EXPECT_FALSE(late.isOpen());

  EXPECT_THROW(engine->listenOn("192.0.2.1"), StandInEngineError);
  EXPECT_EQ(engine->address(), "127.0.0.1");
  openPage();
}

TEST_F(StandInHttp, EncryptsForTheNetwork) {
  const std::string certificate = runtimeDirectory.path / "certificate.pem";
  engine.reset();
  engine = StandInEngine::start({.address = "0.0.0.0",
                                 .port = 0,
                                 .devicesFile = devicesFile(),
                                 .isEncrypted = true,
                                 .certificateFile = certificate});
  // this computer by another of its addresses, in the place of a network's
  const std::string there = "127.0.0.2:" + std::to_string(port());
  const auto local = openPage();
  Page guest("wss://" + there + enginePath(), engine->fingerprint());
  ASSERT_TRUE(guest.isOpen());
  recordCalls();
  // more than one TLS record, both ways
  guest.call(1, kControl, {"x", Value(ValueMap{{"text", Value(std::string(100'000, 'x'))}})});
  EXPECT_TRUE(guest.waitForMessages(1));
  codec::Bytes bytes(3'000'000);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i % 251);
  engine->invokeMethod("c", "m", Value(bytes));
  ASSERT_TRUE(guest.waitForMessages(2));
  EXPECT_TRUE(guest.messages().back() == requestMessage(0, "c", {"m", Value(bytes)}));
  EXPECT_FALSE(Page("ws://" + there + enginePath()).isOpen());
  const auto addresses = engine->pageAddresses();
  EXPECT_THAT(addresses.back(), StartsWith("http://127.0.0.1:"));
  for (size_t i = 0; i + 1 < addresses.size(); ++i) {
    EXPECT_THAT(addresses[i], StartsWith("https://"));
  }
  EXPECT_EQ(std::filesystem::status(certificate).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);

  const std::string fingerprint = engine->fingerprint();
  EXPECT_THAT(fingerprint, testing::SizeIs(32 * 3 - 1));
  engine->setEncrypted(false);
  EXPECT_EQ(guest.waitForClose(), 4003);
  EXPECT_TRUE(local->isOpen());
  EXPECT_TRUE(Page("ws://" + there + enginePath()).isOpen());
  engine->setEncrypted(true);
  EXPECT_EQ(engine->fingerprint(), fingerprint) << "another certificate";
}

TEST_F(StandInHttp, SessionFile) {
  const auto session = readSession().value();
  EXPECT_EQ(session.token.size(), 32u);
  EXPECT_EQ(session.url, "http://" + host() + "/#" + session.token);
  EXPECT_THAT(engine->pageAddresses(), ElementsAre(session.url));

  const auto later = StandInEngine::start({"0.0.0.0", 0});
  EXPECT_NE(readSession()->token, session.token);
  engine.reset();
  ASSERT_TRUE(readSession()) << "an engine took away the file of a later one";
  const auto addresses = later->pageAddresses();
  EXPECT_THAT(addresses.back(), StartsWith("http://127.0.0.1:"));
  for (const auto& address : addresses) EXPECT_THAT(address, Not(HasSubstr("0.0.0.0:")));
  later->stop();
  EXPECT_FALSE(std::filesystem::exists(sessionFilePath()));
}

}  // namespace
}  // namespace tapdeck
