#pragma once

#include <string>
#include <string_view>

#include "workbench/merge/merge_log.h"

namespace forgeyard::workbench {

// Whether two values say the same but for what builds learn and the versions of records.
bool sameEntered(const RecordNode& a, const RecordNode& b);

// A value of that field name that ours and theirs have, as both mean it. Where they don't agree and both
// differ from the base it is ours, and the log gets a conflict. What builds learn never is one: flags are
// true and lists whole if they are so on either side. Lists of records go by their key, other lists by their
// items; the order is theirs if ours is that of the base, else ours.
RecordNode mergedValue(std::string_view name, const Sides& sides, const std::string& where, MergeLog& log);

// Fields whose lists of records have keys of their own, for the walks over whole projects.
std::string keyOf(std::string_view list, const RecordNode& item);
// "component \"cc\"": what the item of such a list is called; "connection" for one of those, which have no
// name.
std::string labelOf(std::string_view list, const RecordNode& item);

// The ids of the components that a connection leads from and to.
std::pair<std::int64_t, std::int64_t> endsOf(const RecordNode& connection);

// A text field's value; empty if there is none.
std::string textOf(const RecordNode& node, std::string_view field);
std::int64_t numberOf(const RecordNode& node, std::string_view field);
// The items of a list field; none if there is no such field.
const RecordNode::List& itemsOf(const RecordNode& node, std::string_view field);

}  // namespace forgeyard::workbench
