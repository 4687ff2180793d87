#include "model/core/settings_block.h"

namespace forgeyard {

void SettingsBlock::describe(RecordFields& fields) {
  fields.version(0);
  fields.text(u"Name", name);
  fields.learnt().text(u"FileName", fileName);  // the name that the file had when it was saved
  fields.text(u"SSRoot", ssRoot);
  fields.number(u"NextComponentId", nextComponentId);
  fields.text(u"SSDatabasePath", ssDatabasePath);
  fields.number(u"SSVersion", ssVersion);
}

SettingsBlock SettingsBlock::load(RecordReader& record) {
  SettingsBlock block;
  LoadFields fields(record);
  block.describe(fields);
  return block;
}

void SettingsBlock::save(RecordWriter& record) {
  SaveFields fields(record);
  describe(fields);
}

LogonBlock LogonBlock::load(RecordReader& record) {
  LogonBlock block;
  record.u32();  // version
  block.userName = record.listedString();
  block.password = record.listedString();
  return block;
}

void LogonBlock::save(RecordWriter& record) const {
  record.u32(0);
  record.listedString(userName);
  record.listedString(password);
}

}  // namespace forgeyard
