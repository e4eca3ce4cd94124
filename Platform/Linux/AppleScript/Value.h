#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Linux/AppleScript/Desktop.h"
#include "Platform/Linux/AppleScript/Terms.h"

namespace tapdeck::applescript {

/// What a statement without a result leaves.
struct Nothing {
  bool operator==(const Nothing&) const = default;
};
/// `missing value`.
struct Missing {
  bool operator==(const Missing&) const = default;
};
struct Data {
  std::string bytes;
  bool operator==(const Data&) const = default;
};
/// `POSIX file`.
struct File {
  std::string path;
  bool operator==(const File&) const = default;
};

/// An application, or something of it: a track (an item, for VLC) as it was when the script got it,
/// or the artwork of that.
struct Object {
  enum class Kind { application, track, artwork };

  Application application = Application::music;
  Kind kind = Kind::application;
  std::shared_ptr<const media::Track> track;

  bool operator==(const Object&) const = default;
};

class Value;
/// What `get volume settings` gives.
struct Record {
  std::vector<std::pair<Property, Value>> fields;
  bool operator==(const Record&) const;
};

class Value : public std::variant<Nothing, Missing, bool, int64_t, double, std::string, Constant,
                                  Data, File, Object, Record> {
 public:
  using variant::variant;

  template <typename Kind>
  const Kind* getIf() const {
    return std::get_if<Kind>(this);
  }
};

/// A failure that a script can catch. `application` is the one that reported it; empty when it is
/// the script's own.
struct ScriptError {
  int number;
  std::string message;
  std::string application;
  /// The place in the source; `end` is 0 as long as it is not known.
  size_t start = 0;
  size_t end = 0;
};

// The Mac's error numbers.
constexpr int kNotFound = -1728;
constexpr int kNotRunning = -600;
constexpr int kTimedOut = -1712;
constexpr int kCannotCoerce = -1700;
constexpr int kEventFailed = -10000;
constexpr int kCannotSet = -10006;
constexpr int kSyntax = -2741;
constexpr int kNotDefined = -2753;
constexpr int kOutOfMemory = -108;
constexpr int kTooDeep = -2706;

/// As people read it: texts without quotes, reals always with a fraction.
std::string display(const Value& value);
/// For messages: texts in quotes.
std::string quoted(const Value& value);

/// A whole number beyond this is a real.
constexpr int64_t kMaxInteger = 536870911;

// Conversions; throw ScriptError (-1700) when the value has none to this kind.
std::string asText(const Value& value);
double asReal(const Value& value);
int64_t asInteger(const Value& value);
bool asBoolean(const Value& value);

}  // namespace tapdeck::applescript
