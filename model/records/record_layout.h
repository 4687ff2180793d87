#pragma once

#include "platform/storage/records/record_fields.h"
#include "typelib/records.h"

namespace forgeyard {

// The streams of a project file's root, in two parts: components stand between them.
void describeProjectHead(RecordStreams& streams);
void describeProjectTail(RecordStreams& streams);
// What describes the streams of a component of that class; null where there is no such class.
Ref<IComponentRecords> componentRecords(const Guid& clsid);

}  // namespace forgeyard
