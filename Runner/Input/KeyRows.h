#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <iterator>
#include <string_view>

namespace tapdeck {

struct KeyRow {
  std::string_view name;
  CGKeyCode code;
};

/// Virtual key codes of the US keyboard; the modifiers are the left-hand ones.
inline constexpr KeyRow kKeyRows[] = {
    {"a", 0},           {"b", 11},         {"c", 8},        {"d", 2},           {"e", 14},
    {"f", 3},           {"g", 5},          {"h", 4},        {"i", 34},          {"j", 38},
    {"k", 40},          {"l", 37},         {"m", 46},       {"n", 45},          {"o", 31},
    {"p", 35},          {"q", 12},         {"r", 15},       {"s", 1},           {"t", 17},
    {"u", 32},          {"v", 9},          {"w", 13},       {"x", 7},           {"y", 16},
    {"z", 6},           {"0", 29},         {"1", 18},       {"2", 19},          {"3", 20},
    {"4", 21},          {"5", 23},         {"6", 22},       {"7", 26},          {"8", 28},
    {"9", 25},          {"space", 49},     {"return", 36},  {"enter", 36},      {"tab", 48},
    {"delete", 51},     {"backspace", 51}, {"escape", 53},  {"esc", 53},        {"left", 123},
    {"right", 124},     {"down", 125},     {"up", 126},     {"arrowleft", 123}, {"arrowright", 124},
    {"arrowdown", 125}, {"arrowup", 126},  {"f1", 122},     {"f2", 120},        {"f3", 99},
    {"f4", 118},        {"f5", 96},        {"f6", 97},      {"f7", 98},         {"f8", 100},
    {"f9", 101},        {"f10", 109},      {"f11", 103},    {"f12", 111},       {"shift", 56},
    {"control", 59},    {"option", 58},    {"command", 55}, {"ctrl", 59},       {"alt", 58},
    {"cmd", 55},        {"home", 115},     {"end", 119},    {"pageup", 116},    {"pagedown", 121},
    {"capslock", 57},   {"-", 27},         {"=", 24},       {"[", 33},          {"]", 30},
    {"\\", 42},         {";", 41},         {"'", 39},       {",", 43},          {".", 47},
    {"/", 44},          {"`", 50},
};

static_assert(std::size(kKeyRows) == 87);

}  // namespace tapdeck
