#include "typelib/output.h"

namespace forgeyard {

FORGEYARD_TYPE_INFO(IOutputTab, nullptr,
                    property<&IOutputTab::get_OutputTab, &IOutputTab::put_OutputTab>(
                        1, "OutputTab", "name of the output tab"),
                    method<&IOutputTab::MsgOut>(2, "MsgOut", "text", "appends one line to the tab"))

}  // namespace forgeyard
