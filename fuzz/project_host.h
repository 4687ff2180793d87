#pragma once

#include "fuzz/scratch_directory.h"
#include "model/classes.h"
#include "model/project/project.h"
#include "platform/files/host_location.h"
#include "tests/support/class_source.h"
#include "tests/support/test_host.h"
#include "tools/classes.h"

namespace forgeyard::fuzz {

// Serves the classes of model and tools, and makes projects in the scratch directory with a host that says
// yes to everything.
class ProjectHost {
 public:
  static Ref<IProject> project(const BString& fileName) {
    static const test::ClassSource model(modelClasses());
    static const test::ClassSource tools(toolClasses());
    static const Ref<test::TestHost> host = make<test::TestHost>();
    Ref<CProject> made = make<CProject>();
    check(made->SetServices(host.get()));
    check(made->put_WorkingDirectory(toModel(scratchDirectory()).path));
    check(made->put_FileName(fileName));
    return made;
  }
};

}  // namespace forgeyard::fuzz
