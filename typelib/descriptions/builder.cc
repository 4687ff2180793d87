#include "typelib/builder.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(IBuilderTask, nullptr,
                    property<&IBuilderTask::get_CurrentTask, &IBuilderTask::put_CurrentTask>(
                        1, "CurrentTask",
                        "what the build does: 0 build, 1 rebuild, 2 clean, 3 compile, 4 lists only"),
                    method<&IBuilderTask::PreBuildSelection>(2, "PreBuildSelection", "selection",
                                                             "the files that a compile is limited to"))

}  // namespace forgeyard
