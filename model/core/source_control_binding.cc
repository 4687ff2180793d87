#include "model/core/source_control_binding.h"

namespace forgeyard {

namespace {

SourceControlFactory current = nullptr;

}  // namespace

void setSourceControlFactory(SourceControlFactory factory) {
  current = factory;
}

SourceControlFactory sourceControlFactory() {
  return current;
}

}  // namespace forgeyard
