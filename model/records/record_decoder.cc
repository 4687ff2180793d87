#include "model/records/record_decoder.h"

#include <algorithm>
#include <optional>

#include "engine/component/omission_text.h"
#include "model/records/record_layout.h"
#include "model/records/record_values.h"
#include "platform/storage/disk/memory_bytes.h"

namespace forgeyard {

namespace {

constexpr const char* kOddForm = "it is not in the form that it is written in";

RecordNode emptyFields() {
  return {RecordNode::Fields{}};
}

// One storage. Streams that no description names are left for finish().
class StreamDecoder final : public RecordStreams {
 public:
  // Borrows all; `place` opens the words about what is kept.
  StreamDecoder(const StorageBytes& storage, RecordNode& out, std::string place,
                std::vector<LoadOmission>& kept)
      : storage_(storage), out_(out), place_(std::move(place)), kept_(kept) {}

  void record(const char16_t* stream, std::u16string_view name, const Describe& fields) override {
    const std::string* bytes = find(stream);
    if (!bytes) return missing(stream);
    const auto in = make<MemoryBytes>(*bytes);
    HRESULT why = S_OK;
    std::optional<RecordNode> record = read(*in, fields, why);
    if (!record) return keep(stream, *bytes, "", statusText(why));
    if (!isWrittenSo(*record, fields, *bytes, 0, in->position)) return keep(stream, *bytes, "", kOddForm);
    RecordNode extra = emptyFields();
    addRest(extra, *bytes, in->position);
    addExtra(stream, std::move(extra));
    if (!name.empty()) return out_.add(narrowFromWide(name), std::move(*record));
    for (RecordField& field : *record->get<RecordNode::Fields>())
      out_.add(std::move(field.name), std::move(field.node));
  }

  void list(const List& list, const Describe& fields) override {
    const std::string* bytes = find(list.stream);
    if (!bytes) return missing(list.stream);
    const auto in = make<MemoryBytes>(*bytes);
    RecordReader reader(in.get());
    std::uint32_t version = 0;
    std::uint32_t count = 0;
    const HRESULT status = guard([&] {
      if (list.version) version = reader.u32();
      count = reader.u32();
    });
    if (failed(status)) return keep(list.stream, *bytes, "", statusText(status));

    RecordNode::List records = readRecords(*in, list, fields, count);
    RecordNode extra = emptyFields();
    if (version != 0) extra.add("version", {std::int64_t{version}});
    if (records.size() != count) extra.add("count", {std::int64_t{count}});
    const bool whole = records.size() == count;
    out_.add(narrowFromWide(list.name), std::move(records));
    const bool closed = !whole || list.closingText.empty() || readClosingText(*in, list);
    if (closed) {
      addRest(extra, *bytes, in->position);
    } else {
      extra.add("rest", bytesNode(std::string_view(*bytes).substr(in->position)));
    }
    addExtra(list.stream, std::move(extra));
  }

  // What else the storage holds.
  void finish() {
    for (const auto& [name, bytes] : storage_.streams) {
      if (std::find(described_.begin(), described_.end(), name) == described_.end())
        addExtra(name, bytesField(bytes));
    }
    if (!extras_.empty()) out_.add("streams", {std::move(extras_)});
  }

 private:
  const std::string* find(const BString& stream) {
    described_.push_back(stream);
    const auto found = std::find_if(storage_.streams.begin(), storage_.streams.end(),
                                    [&](const auto& entry) { return entry.first == stream; });
    return found == storage_.streams.end() ? nullptr : &found->second;
  }

  static RecordNode bytesField(std::string_view bytes) {
    RecordNode node = emptyFields();
    node.add("bytes", bytesNode(bytes));
    return node;
  }

  static void addRest(RecordNode& extra, std::string_view bytes, std::size_t end) {
    if (end == bytes.size()) return;
    extra.add("rest", bytesNode(bytes.substr(end)));
    extra.find("rest")->learnt = extra.find("count") == nullptr;
  }

  void addExtra(const BString& stream, RecordNode what) {
    auto& fields = *what.get<RecordNode::Fields>();
    if (fields.empty()) return;
    const bool learnt =
        std::all_of(fields.begin(), fields.end(), [](const RecordField& field) { return field.node.learnt; });
    fields.insert(fields.begin(), RecordField{"name", stream});
    what.learnt = learnt;
    extras_.push_back(std::move(what));
  }

  void missing(const BString& stream) {
    RecordNode node = emptyFields();
    node.add("missing", {true});
    addExtra(stream, std::move(node));
    tell(stream, "", "it is missing");
  }

  void tell(const BString& stream, const std::string& where, const std::string& why) {
    kept_.push_back({place_ + quoted("stream", stream) + where, why});
  }

  void keep(const BString& stream, std::string_view bytes, const std::string& where, const std::string& why) {
    addExtra(stream, bytesField(bytes));
    tell(stream, where, why);
  }

  // A record at the stream's position; nothing, with the position where it was, if it can't be read.
  static std::optional<RecordNode> read(MemoryBytes& in, const Describe& fields, HRESULT& why) {
    const std::size_t start = in.position;
    RecordNode record = emptyFields();
    why = guard([&] {
      RecordReader reader(&in);
      ShowFields show(reader, record);
      fields(show);
    });
    if (succeeded(why)) return record;
    in.position = start;
    return std::nullopt;
  }

  static bool isWrittenSo(const RecordNode& record, const Describe& fields, std::string_view bytes,
                          std::size_t start, std::size_t end) {
    const auto out = make<MemoryBytes>();
    RecordWriter writer(out.get());
    FieldsReader values(ValueReader(record, ""));
    TakeFields take(values, writer);
    return succeeded(guard([&] { fields(take); })) && out->bytes == bytes.substr(start, end - start);
  }

  RecordNode::List readRecords(MemoryBytes& in, const List& list, const Describe& fields,
                               std::uint32_t count) {
    RecordNode::List records;
    while (records.size() < count) {
      const std::size_t start = in.position;
      const std::string at =
          ", record " + std::to_string(records.size() + 1) + " of " + std::to_string(count);
      HRESULT why = S_OK;
      std::optional<RecordNode> record = read(in, fields, why);
      if (!record) {
        tell(list.stream, at + " and all behind it", statusText(why));
        break;
      }
      if (!isWrittenSo(*record, fields, in.bytes, start, in.position)) {
        record = bytesField(std::string_view(in.bytes).substr(start, in.position - start));
        tell(list.stream, at, kOddForm);
      }
      records.push_back(std::move(*record));
    }
    return records;
  }

  // Whether it could be read.
  bool readClosingText(MemoryBytes& in, const List& list) {
    const std::size_t start = in.position;
    const std::string name = narrowFromWide(list.closingText);
    const HRESULT status = guard([&] { out_.add(name, RecordReader(&in).listedString()); });
    if (succeeded(status)) return true;
    in.position = start;
    out_.add(name, {});
    tell(list.stream, " behind its last record", statusText(status));
    return false;
  }

  const StorageBytes& storage_;
  RecordNode& out_;
  std::string place_;
  std::vector<LoadOmission>& kept_;
  std::vector<BString> described_;
  RecordNode::List extras_;
};

RecordNode storageNode(const StorageBytes& storage) {
  RecordNode node = emptyFields();
  node.add("element", storage.name);
  node.add("clsid", clsidNode(storage.clsid));
  return node;
}

// A storage that nothing describes.
RecordNode decodeStorage(const StorageBytes& storage, std::vector<LoadOmission>& kept);

void decodeBelow(const StorageBytes& storage, RecordNode& out, std::vector<LoadOmission>& kept) {
  RecordNode::List below;
  for (const StorageBytes& content : storage.storages) below.push_back(decodeStorage(content, kept));
  if (!below.empty()) out.add("storages", {std::move(below)});
}

RecordNode decodeStorage(const StorageBytes& storage, std::vector<LoadOmission>& kept) {
  RecordNode node = storageNode(storage);
  StreamDecoder(storage, node, "", kept).finish();
  decodeBelow(storage, node, kept);
  return node;
}

RecordNode decodeComponent(const StorageBytes& storage, std::vector<LoadOmission>& kept) {
  RecordNode node = storageNode(storage);
  const std::string place = quoted("component", storage.name);
  StreamDecoder streams(storage, node, place + ", ", kept);
  if (const Ref<IComponentRecords> records = componentRecords(storage.clsid)) {
    records->describeRecords(streams);
  } else {
    kept.push_back({place, "there is no component class " + formatGuid(storage.clsid)});
  }
  streams.finish();
  decodeBelow(storage, node, kept);
  return node;
}

}  // namespace

RecordNode decodeProject(const StorageBytes& root, std::vector<LoadOmission>& kept) {
  RecordNode node = emptyFields();
  if (root.clsid != GUID_NULL) node.add("clsid", clsidNode(root.clsid));
  StreamDecoder streams(root, node, "", kept);
  describeProjectHead(streams);
  RecordNode::List components;
  for (const StorageBytes& storage : root.storages) components.push_back(decodeComponent(storage, kept));
  node.add("components", {std::move(components)});
  describeProjectTail(streams);
  streams.finish();
  return node;
}

}  // namespace forgeyard
