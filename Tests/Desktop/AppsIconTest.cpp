#include <gdkmm/pixbufloader.h>
#include <glibmm/base64.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>

#include "Runner/Apps/Icon.h"
#include "Tests/Desktop/AppsFixture.h"
#include "Tests/Support/Surroundings.h"

namespace tapdeck::testing {
namespace {

using Pixel = std::array<int, 4>;
constexpr Pixel kRed = {255, 0, 0, 255};
constexpr Pixel kBlue = {0, 0, 255, 255};
constexpr Pixel kClear = {0, 0, 0, 0};

constexpr const char* kTwoHalves =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16"><rect width="8" height="16" )"
    R"(fill="#f00"/><rect x="8" width="8" height="16" fill="#00f"/></svg>)";

struct Icon {
  explicit Icon(const std::string& id) : text(applicationIcon(id)) {
    const std::string png = Glib::Base64::decode(text);
    const auto loader = Gdk::PixbufLoader::create("png");
    loader->write(reinterpret_cast<const guint8*>(png.data()), png.size());
    loader->close();
    pixels = loader->get_pixbuf();
  }
  bool isRightSize() const {
    return pixels->get_width() == 64 && pixels->get_height() == 64 && pixels->get_n_channels() == 4;
  }
  Pixel at(int x, int y) const {
    const guint8* pixel = pixels->get_pixels() + y * pixels->get_rowstride() + 4 * x;
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
  }
  std::string text;
  Glib::RefPtr<Gdk::Pixbuf> pixels;
};

class AppsIconTest : public AppsTest {
 protected:
  Icon iconOf(const std::string& icon) {
    write(users / "app.desktop", entry("App", "Icon=" + icon));
    return Icon("app.desktop");
  }
  const std::filesystem::path folder = userData / "pictures";
};

TEST_F(AppsIconTest, DrawsVectorsAtTheirFullSizeAndPicturesWhole) {
  write(userData / "icons/hicolor/scalable/apps/two-halves.svg", kTwoHalves);
  write(folder / "halves.svg", kTwoHalves);
  for (const auto& name : {std::string("two-halves"), (folder / "halves.svg").string()}) {
    const Icon icon = iconOf(name);
    ASSERT_TRUE(icon.isRightSize()) << name;
    EXPECT_EQ(icon.at(31, 63), kRed);
    EXPECT_EQ(icon.at(32, 0), kBlue);
  }

  const auto wide = Gdk::Pixbuf::create(Gdk::COLORSPACE_RGB, false, 8, 200, 100);
  wide->fill(0x0000FFFF);
  wide->save(folder / "wide.png", "png");
  const Icon icon = iconOf(folder / "wide.png");
  ASSERT_TRUE(icon.isRightSize());
  EXPECT_EQ(icon.at(32, 14), kClear);
  EXPECT_EQ(icon.at(1, 17), kBlue);
  EXPECT_EQ(icon.at(62, 46), kBlue);
}

/// A square with a drawing in it that takes minutes.
std::string slowDrawing() {
  std::string text = R"(<svg xmlns="http://www.w3.org/2000/svg" width="64" height="64"><defs>)"
                     R"(<g id="0"><path opacity=".5" d="M0 0)";
  for (int corner = 0; corner < 500; ++corner) {
    text += " L" + std::to_string(corner * 37 % 64) + " " + std::to_string(corner * 53 % 64);
  }
  text += R"("/></g>)";
  for (int level = 1; level < 6; ++level) {
    text += "<g id=\"" + std::to_string(level) + "\">";
    for (int copy = 0; copy < 10; ++copy) {
      text += "<use href=\"#" + std::to_string(level - 1) + "\"/>";
    }
    text += "</g>";
  }
  return text + R"(</defs><use href="#5"/></svg>)";
}

TEST_F(AppsIconTest, WaitsForNoIconForLong) {
  const Icon generic = iconOf("nowhere.png");
  const auto huge = Gdk::Pixbuf::create(Gdk::COLORSPACE_RGB, false, 8, 8000, 5001);
  huge->fill(0x0000FFFF);
  std::filesystem::create_directories(folder);
  huge->save(folder / "huge.png", "png");
  EXPECT_EQ(iconOf(folder / "huge.png").text, generic.text);

  write(folder / "slow.svg", slowDrawing());
  const auto start = std::chrono::steady_clock::now();
  for (int time = 0; time < 2; ++time) EXPECT_EQ(iconOf(folder / "slow.svg").text, generic.text);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_F(AppsIconTest, AsksNoBus) {
  const TemporaryFolder temporary;
  const std::string path = temporary.path / "bus";
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int bus = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(bus, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(bus, 1), 0);
  const EnvironmentVariable variable("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str());
  iconOf("nowhere.png");
  catalogue();
  EXPECT_EQ(accept(bus, nullptr, nullptr), -1);
  close(bus);
}

TEST_F(AppsIconTest, StandsInForWhatIsNoImage) {
  write(folder / "text.png", "no image");
  write(folder / "half.svg", "<svg><rect");
  mkfifo((folder / "pipe.png").c_str(), 0600);
  write(users / "plain.desktop", entry("Plain"));
  const Icon generic("plain.desktop");
  ASSERT_TRUE(generic.isRightSize());
  for (const char* icon : {"text.png", "half.svg", "pipe.png", "", "nowhere.png"}) {
    EXPECT_EQ(iconOf(folder / icon).text, generic.text) << icon;
  }
  EXPECT_EQ(applicationIcon("unknown.desktop"), "");
}

}  // namespace
}  // namespace tapdeck::testing
