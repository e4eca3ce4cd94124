#include "Platform/Linux/X11/Capture/Damage.h"

#include <xcb/damage.h>
#include <xcb/xfixes.h>

namespace tapdeck::x11 {
namespace {

bool hasDamage(const Connection& connection) {
  const auto* extension = xcb_get_extension_data(connection.get(), &xcb_damage_id);
  if (extension == nullptr || extension->present == 0) return false;
  return connection.wait(xcb_damage_query_version(connection.get(), 1, 1),
                         xcb_damage_query_version_reply) != nullptr;
}

std::vector<pixels::Area> areasIn(const xcb_xfixes_fetch_region_reply_t& region) {
  std::vector<pixels::Area> areas;
  areas.reserve(static_cast<size_t>(xcb_xfixes_fetch_region_rectangles_length(&region)));
  const auto* rectangles = xcb_xfixes_fetch_region_rectangles(&region);
  const int count = xcb_xfixes_fetch_region_rectangles_length(&region);
  for (int i = 0; i < count; ++i) {
    areas.push_back({rectangles[i].x, rectangles[i].y, rectangles[i].width, rectangles[i].height});
  }
  return areas;
}

}  // namespace

Damage::Damage(Connection& connection) : _connection(connection) {
  if (!hasDamage(connection)) return;
  _damage = xcb_generate_id(connection.get());
  _region = xcb_generate_id(connection.get());
  // The region is fetched and the events are dropped; at this level the server sends the fewest,
  // one for each fetch.
  xcb_damage_create(connection.get(), _damage, connection.root(),
                    XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
  xcb_xfixes_create_region(connection.get(), _region, 0, nullptr);
}

Damage::~Damage() {
  if (_damage == XCB_NONE) return;
  xcb_damage_destroy(_connection.get(), _damage);
  xcb_xfixes_destroy_region(_connection.get(), _region);
  _connection.flush();
}

std::optional<std::vector<pixels::Area>> Damage::take() {
  if (_damage == XCB_NONE) return std::nullopt;
  xcb_connection_t* server = _connection.get();
  // one round trip for all three
  xcb_damage_subtract(server, _damage, XCB_NONE, _region);
  const auto regionRequest = xcb_xfixes_fetch_region(server, _region);
  const auto rootRequest = xcb_get_geometry(server, _connection.root());
  const auto region = _connection.wait(regionRequest, xcb_xfixes_fetch_region_reply);
  const auto root = _connection.wait(rootRequest, xcb_get_geometry_reply);
  _connection.flush();
  if (region == nullptr || root == nullptr) return std::nullopt;
  const bool isSameScreen = root->width == _rootWidth && root->height == _rootHeight;
  _rootWidth = root->width;
  _rootHeight = root->height;
  if (!isSameScreen) return std::nullopt;
  return areasIn(*region);
}

}  // namespace tapdeck::x11
