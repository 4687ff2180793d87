#pragma once

#include <vector>

#include "platform/text/bstring.h"
#include "typelib/component.h"

namespace forgeyard {

// The manual and automatic dependencies of all source files that are themselves no source file, by the names
// under which both are stored: sorted, each once. Throws StatusError.
std::vector<BString> externalDependencies(const std::vector<Ref<IComponent>>& components);

}  // namespace forgeyard
