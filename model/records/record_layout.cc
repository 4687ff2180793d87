#include "model/records/record_layout.h"

#include "model/configurations/configuration.h"
#include "model/connections/connection.h"
#include "model/core/settings_block.h"
#include "model/file/stream_names.h"
#include "platform/com/class_table.h"

namespace forgeyard {

void describeProjectHead(RecordStreams& streams) {
  streams.record(kSettingsStream, u"settings",
                 [](RecordFields& fields) { SettingsBlock().describe(fields); });
  streams.list({kConfigurationsStream, u"configurations", false, u"active"},
               [](RecordFields& fields) { ConfigurationRecord().describe(fields); });
}

void describeProjectTail(RecordStreams& streams) {
  streams.list({kConnectionsStream, u"connections", true, {}}, [](RecordFields& fields) {
    std::int32_t from = 0;
    std::int32_t to = 0;
    CConnection::describe(fields, from, to);
  });
}

Ref<IComponentRecords> componentRecords(const Guid& clsid) {
  return createInstance<IComponent>(clsid).as<IComponentRecords>();
}

}  // namespace forgeyard
