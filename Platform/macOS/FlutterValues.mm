#import "Platform/macOS/FlutterValues.h"

#import <CoreFoundation/CoreFoundation.h>
#import <FlutterMacOS/FlutterMacOS.h>

#include <cstring>
#include <limits>
#include <variant>

#import "Platform/macOS/Strings.h"

namespace tapdeck::platform {
namespace {

Value valueFromNumber(NSNumber* number) {
  const auto reference = (__bridge CFNumberRef)number;
  if (CFGetTypeID(reference) == CFBooleanGetTypeID()) return Value(number.boolValue != NO);
  if (CFNumberIsFloatType(reference)) return Value(number.doubleValue);
  const bool isUnsigned = std::strcmp(number.objCType, @encode(unsigned long long)) == 0;
  if (isUnsigned && number.unsignedLongLongValue > std::numeric_limits<int64_t>::max()) {
    return Value(number.doubleValue);
  }
  return Value(int64_t{number.longLongValue});
}

template <typename Element>
Value valueFromData(NSData* data) {
  std::vector<Element> elements(data.length / sizeof(Element));
  [data getBytes:elements.data() length:elements.size() * sizeof(Element)];
  return Value(std::move(elements));
}

Value valueFromTypedData(FlutterStandardTypedData* typed) {
  switch (typed.type) {
    case FlutterStandardDataTypeUInt8:
      return valueFromData<uint8_t>(typed.data);
    case FlutterStandardDataTypeInt32:
      return valueFromData<int32_t>(typed.data);
    case FlutterStandardDataTypeInt64:
      return valueFromData<int64_t>(typed.data);
    case FlutterStandardDataTypeFloat32:
      return valueFromData<float>(typed.data);
    case FlutterStandardDataTypeFloat64:
      return valueFromData<double>(typed.data);
  }
  return Value();
}

Value valueFromArray(NSArray* array) {
  Value::List list;
  list.reserve(array.count);
  for (id element in array) list.push_back(valueFromFlutter(element));
  return Value(std::move(list));
}

Value valueFromDictionary(NSDictionary* dictionary) {
  Value::Map map;
  for (id key in dictionary) map.set(valueFromFlutter(key), valueFromFlutter(dictionary[key]));
  return Value(std::move(map));
}

// a collection holds no nil
id element(const Value& value) {
  return flutterFromValue(value) ?: NSNull.null;
}

struct FlutterFromContent {
  template <typename Element>
  static NSData* data(const std::vector<Element>& elements) {
    return [NSData dataWithBytes:elements.data() length:elements.size() * sizeof(Element)];
  }

  // a block keeps a copy of a variable, but only the address of what a reference names
  static NSData* sharedData(Value::Bytes bytes) {
    return [[NSData alloc] initWithBytesNoCopy:const_cast<uint8_t*>(bytes.data())
                                        length:bytes.size()
                                   deallocator:^(void*, NSUInteger) {
                                     (void)bytes;
                                   }];
  }

  id operator()(std::monostate) const { return nil; }
  id operator()(bool value) const { return [NSNumber numberWithBool:value]; }
  id operator()(int64_t value) const { return [NSNumber numberWithLongLong:value]; }
  id operator()(double value) const { return [NSNumber numberWithDouble:value]; }
  id operator()(const std::string& text) const { return stringFromUtf8(text); }
  id operator()(const Value::Bytes& bytes) const {
    return [FlutterStandardTypedData typedDataWithBytes:sharedData(bytes)];
  }
  id operator()(const Value::Int32List& list) const {
    return [FlutterStandardTypedData typedDataWithInt32:data(list)];
  }
  id operator()(const Value::Int64List& list) const {
    return [FlutterStandardTypedData typedDataWithInt64:data(list)];
  }
  id operator()(const Value::Float32List& list) const {
    return [FlutterStandardTypedData typedDataWithFloat32:data(list)];
  }
  id operator()(const Value::Float64List& list) const {
    return [FlutterStandardTypedData typedDataWithFloat64:data(list)];
  }
  id operator()(const Value::List& list) const {
    NSMutableArray* array = [NSMutableArray arrayWithCapacity:list.size()];
    for (const Value& value : list) [array addObject:element(value)];
    return array;
  }
  id operator()(const Value::Map& map) const {
    NSMutableDictionary* dictionary = [NSMutableDictionary dictionaryWithCapacity:map.size()];
    for (const auto& [key, value] : map) dictionary[element(key)] = element(value);
    return dictionary;
  }
};

struct FlutterFromAnswer {
  id operator()(const Value& value) const { return flutterFromValue(value); }
  id operator()(const MethodError& error) const {
    return [FlutterError errorWithCode:nameFromUtf8(error.code)
                               message:stringFromUtf8(error.message)
                               details:flutterFromValue(error.details)];
  }
  id operator()(NotImplemented) const { return FlutterMethodNotImplemented; }
};

}  // namespace

Value valueFromFlutter(id object) {
  if ([object isKindOfClass:NSNumber.class]) return valueFromNumber(object);
  if ([object isKindOfClass:NSString.class]) return Value(utf8FromString(object));
  if ([object isKindOfClass:NSArray.class]) return valueFromArray(object);
  if ([object isKindOfClass:NSDictionary.class]) return valueFromDictionary(object);
  if ([object isKindOfClass:FlutterStandardTypedData.class]) return valueFromTypedData(object);
  return Value();
}

id flutterFromValue(const Value& value) {
  return value.visit(FlutterFromContent{});
}

id flutterFromOutcome(const Outcome& outcome) {
  return std::visit(FlutterFromAnswer{}, outcome);
}

}  // namespace tapdeck::platform
