#pragma once

#include "Platform/Linux/AppleScript/Value.h"

namespace tapdeck::applescript {

// The applications as scripts see them: the properties of the desktop's players, in the units that
// each application has for them on the Mac. Texts are made one line each and of bounded length,
// because scripts write one value on each line. Throw ScriptError, which names the application.

/// Throws -1728 when the object has no such property, or the property no value at present.
Value propertyOf(Desktop& desktop, const Object& object, Property property);

/// Throws -10006 when the property cannot be set.
void setProperty(Desktop& desktop, const Object& object, Property property, const Value& value);

/// `artwork 1 of current track`.
Value elementOf(const Object& object, Element element, const Value& index);

void perform(Desktop& desktop, Application application, Command command);

}  // namespace tapdeck::applescript
