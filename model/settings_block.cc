#include "model/settings_block.h"

namespace forgeyard {

SettingsBlock SettingsBlock::load(RecordReader& record) {
  SettingsBlock block;
  block.version = record.u32();
  block.name = record.listedString();
  block.fileName = record.listedString();
  block.ssRoot = record.listedString();
  block.nextComponentId = record.i32();
  block.ssDatabasePath = record.listedString();
  block.ssVersion = record.i32();
  return block;
}

void SettingsBlock::save(RecordWriter& record) const {
  record.u32(0);
  record.listedString(name);
  record.listedString(fileName);
  record.listedString(ssRoot);
  record.i32(nextComponentId);
  record.listedString(ssDatabasePath);
  record.i32(ssVersion);
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
