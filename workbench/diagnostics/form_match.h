#pragma once

#include <optional>
#include <span>

#include "workbench/diagnostics/diagnostic_forms.h"

namespace forgeyard::workbench::diagnostic_forms {

// What the line says if the form fits it.
std::optional<Diagnostic> match(View line, const Form& form);

// Whether the path ends with one of the names of programs.
bool isOneOf(View path, std::span<const View> names);
bool isScript(View path);

}  // namespace forgeyard::workbench::diagnostic_forms
