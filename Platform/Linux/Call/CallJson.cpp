#include "Platform/Linux/Call/CallJson.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include "Engine/StandardCodec.h"
#include "Platform/Linux/Support/GLibOwners.h"

namespace tapdeck {
namespace {

using Json = nlohmann::ordered_json;

Value numberFrom(const Json& json) {
  if (json.is_number_float()) return Value(json.get<double>());
  if (json.is_number_unsigned() && json.get<uint64_t>() > uint64_t{INT64_MAX}) {
    // What the parser itself does with integers that are longer still.
    return Value(json.get<double>());
  }
  return Value(json.get<int64_t>());
}

Value valueFrom(const Json& json, int depth) {
  if (json.is_structured() && ++depth > codec::kDepthLimit) {
    throw std::invalid_argument("The arguments nest deeper than " +
                                std::to_string(codec::kDepthLimit) + " levels.");
  }
  switch (json.type()) {
    case Json::value_t::boolean:
      return Value(json.get<bool>());
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned:
    case Json::value_t::number_float:
      return numberFrom(json);
    case Json::value_t::string:
      return Value(json.get<std::string>());
    case Json::value_t::array: {
      Value::List list;
      for (const auto& element : json) list.push_back(valueFrom(element, depth));
      return Value(std::move(list));
    }
    case Json::value_t::object: {
      ValueMap map;
      for (const auto& [key, value] : json.items()) map.set(Value(key), valueFrom(value, depth));
      return Value(std::move(map));
    }
    case Json::value_t::null:
    case Json::value_t::binary:
    case Json::value_t::discarded:
      break;
  }
  return {};
}

Json jsonOf(std::monostate) {
  return nullptr;
}

Json jsonOf(bool value) {
  return value;
}

Json jsonOf(int64_t value) {
  return value;
}

Json jsonOf(double value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

Json jsonOf(const std::string& value) {
  return value;
}

Json jsonOf(const Value::Bytes& bytes) {
  const glib::Text text(g_base64_encode(bytes.data(), bytes.size()));
  return {{"base64", text.get()}};
}

template <typename Number>
Json jsonOf(const std::vector<Number>& numbers) {
  Json array = Json::array();
  for (const Number number : numbers) {
    if constexpr (std::is_floating_point_v<Number>) {
      array.push_back(jsonOf(static_cast<double>(number)));
    } else {
      array.push_back(number);
    }
  }
  return array;
}

Json jsonOf(const Value::List& list) {
  Json array = Json::array();
  for (const auto& element : list) array.push_back(jsonFromValue(element));
  return array;
}

Json jsonOf(const ValueMap& map) {
  Json object = Json::object();
  for (const auto& [key, value] : map) {
    const auto* text = key.getIf<std::string>();
    object[text != nullptr ? *text : lineOf(jsonFromValue(key))] = jsonFromValue(value);
  }
  return object;
}

}  // namespace

Value valueFromJson(const std::string& text) {
  try {
    return valueFrom(Json::parse(text), 0);
  } catch (const Json::exception& error) {
    throw std::invalid_argument(std::string("The arguments are not JSON: ") + error.what());
  }
}

Json jsonFromValue(const Value& value) {
  return value.visit([](const auto& held) { return jsonOf(held); });
}

Json jsonFromOutcome(const Outcome& outcome) {
  if (const auto* value = std::get_if<Value>(&outcome)) return jsonFromValue(*value);
  if (const auto* error = std::get_if<MethodError>(&outcome)) {
    return {{"error",
             {{"code", error->code},
              {"message", error->message},
              {"details", jsonFromValue(error->details)}}}};
  }
  return {{"notImplemented", true}};
}

std::string lineOf(const Json& json) {
  return json.dump(-1, ' ', /*ensure_ascii=*/false, Json::error_handler_t::replace);
}

}  // namespace tapdeck
