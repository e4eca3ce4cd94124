#pragma once

#include "Platform/Linux/AppleScript/Value.h"

namespace tapdeck::applescript {

// The applications as scripts see them: their properties in the units that each has on the Mac,
// over the players of the desktop. Texts come in one line each and of a bounded length, whatever
// the player gave, as scripts put them into lines. Throw ScriptError, which names the application.

/// -1728 when the object has no such property, or nothing there at present.
Value propertyOf(Desktop& desktop, const Object& object, Property property);

/// -10006 when it cannot be set.
void setProperty(Desktop& desktop, const Object& object, Property property, const Value& value);

/// `artwork 1 of current track`.
Value elementOf(const Object& object, Element element, const Value& index);

void perform(Desktop& desktop, Application application, Command command);

}  // namespace tapdeck::applescript
