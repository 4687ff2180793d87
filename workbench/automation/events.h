#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/com/automation.h"
#include "platform/com/connection_point.h"

namespace forgeyard::workbench {

// Called with an event's arguments; what it returns counts for events that may be refused: true refuses. It
// must not throw.
using EventHandler = std::function<Variant(std::span<const Variant> arguments)>;

// Connects a handler to one event of an object through its connection points, until the advice ends:
//   OnBuildStart(task)                     true keeps the build from starting
//   OnBuildEnd()
//   OnChanged(property, id)                a property of the object has changed
//   OnNewConfiguration(created, basedOn)   of a project
//   OnDeletedConfiguration(old)
// Names in any case. Throws a MemberError when the object has no such event, with those that it has.
Advice subscribe(IUnknown* object, std::string_view event, EventHandler handler);

// The names of the events that the object fires.
std::vector<std::string> eventNames(IUnknown* object);

}  // namespace forgeyard::workbench
