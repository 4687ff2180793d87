#pragma once

#include <string>
#include <string_view>

#include "hosts/console/usage/candidate.h"
#include "workbench/project/project_contents.h"

namespace forgeyard::console {

// What a project and its surroundings offer for an argument. `typed` is what of it is typed; more than fits
// that may be in the result, but for files. Throw a Failure where there is no project.

// Those of that kind; all for none. A name that two have tells nothing: their numbers do.
Candidates components(workbench::ProjectContents& contents, std::string_view kindName = {});
Candidates configurations(workbench::ProjectContents& contents);
// As a user in the current directory writes them: relative unless an absolute path was begun.
Candidates sourceFiles(workbench::ProjectContents& contents, const std::string& typed);
Candidates targets(const Registry& registry);
// The projects of the workspace.
Candidates projects(workbench::ProjectContents& contents);

// The properties of a component by name or "#ID".
Candidates componentProperties(workbench::ProjectContents& contents, const std::string& component);
// Those that can be set, with "="; behind that what the property can be set to.
Candidates componentAssignments(workbench::ProjectContents& contents, const std::string& component,
                                const std::string& typed);
// The same of a configuration.
Candidates configurationAssignments(workbench::ProjectContents& contents, const std::string& typed);

}  // namespace forgeyard::console
