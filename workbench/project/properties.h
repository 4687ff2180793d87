#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/com/type_info.h"

namespace forgeyard::workbench {

// One PROPERTY=VALUE of the command line.
struct Assignment {
  std::string property;
  std::string value;
};

// Cuts each text at its first "=". Throws a Failure for one that has none.
std::vector<Assignment> assignments(const std::vector<std::string>& texts);

// The properties of an object that can be read as text, as its own description lists them: base interfaces
// first.
std::vector<std::string> readableProperties(IDispatch& object);
std::vector<std::string> readableProperties(const TypeInfo& type);
std::vector<std::string> writableProperties(IDispatch& object);
std::vector<std::string> writableProperties(const TypeInfo& type);

bool hasReadable(IDispatch& object, const std::string& property);
bool hasWritable(IDispatch& object, const std::string& property);

// A value that a property can be set to, where there are only a few.
struct ValueChoice {
  std::string value;
  std::string help;  // may be empty
};
std::vector<ValueChoice> valueChoices(const TypeInfo& type, const std::string& property);
// Its line of help; empty for a property that the type hasn't got.
std::string propertyHelp(const TypeInfo& type, const std::string& property);

// Names in any case. Throw a Failure that says which property and why.
Variant propertyValue(IDispatch& object, const std::string& property);
std::string readProperty(IDispatch& object, const std::string& property);
// Changes that property alone. Flags also take yes and no, on and off, true and false.
void putProperty(IDispatch& object, const std::string& property, const std::string& value);
// Changes it, and what follows from it.
void editProperty(IDispatch& object, const std::string& property, const std::string& value);

}  // namespace forgeyard::workbench
