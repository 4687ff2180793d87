#include "model/records/record_encoder.h"

#include <algorithm>
#include <optional>

#include "model/records/record_layout.h"
#include "model/records/record_values.h"
#include "platform/storage/compound_file/element_name.h"
#include "platform/storage/disk/memory_bytes.h"

namespace forgeyard {

namespace {

// As deep as a file is read.
constexpr int kDeepestLevel = 32;

// One storage, from the fields that describe it.
class StreamEncoder final : public RecordStreams {
 public:
  // Borrows both. Takes the field "streams", whose entries tell of what stands nowhere else.
  StreamEncoder(FieldsReader& fields, StorageBytes& out) : fields_(fields), out_(out) {
    if (!fields_.has("streams")) return;
    for (const ValueReader& item : fields_.require("streams").items()) extras_.emplace_back(item);
  }

  void record(const char16_t* stream, std::u16string_view name, const Describe& describe) override {
    Extra* extra = find(stream);
    if (extra && extra->standsAlone()) return putAlone(*extra, name);
    const auto bytes = make<MemoryBytes>();
    RecordWriter writer(bytes.get());
    if (name.empty()) {
      TakeFields take(fields_, writer);
      describe(take);
    } else {
      putRecord(fields_.require(narrowFromWide(name)), describe, writer);
    }
    put(stream, bytes->bytes, extra);
  }

  void list(const List& list, const Describe& describe) override {
    Extra* extra = find(list.stream);
    if (extra && extra->standsAlone()) {
      putAlone(*extra, list.name);
      return refuse(list.closingText);
    }
    const auto bytes = make<MemoryBytes>();
    RecordWriter writer(bytes.get());
    const std::vector<ValueReader> records = fields_.require(narrowFromWide(list.name)).items();
    const std::optional<std::uint32_t> count = extra ? extra->number("count") : std::nullopt;
    if (list.version) writer.u32(extra ? extra->number("version").value_or(0) : 0);
    writer.u32(count.value_or(static_cast<std::uint32_t>(records.size())));
    for (const ValueReader& record : records) putRecord(record, describe, writer);
    if (!list.closingText.empty() && !count) {
      const ValueReader text = fields_.require(narrowFromWide(list.closingText));
      // Null where it can't be read: then it is among the rest.
      if (!text.node().isNull() || !extra || !extra->has("rest")) writer.listedString(text.text());
    }
    put(list.stream, bytes->bytes, extra);
  }

  void finish() {
    for (Extra& extra : extras_) {
      if (!extra.taken) putAlone(extra, {});
    }
  }

 private:
  // An entry of "streams".
  class Extra {
   public:
    explicit Extra(const ValueReader& item) : fields(item), name(fields.require("name")) {}

    bool has(std::string_view field) { return fields.has(field); }
    // Whether it tells of the whole stream.
    bool standsAlone() { return has("missing") || has("bytes"); }
    std::optional<std::uint32_t> number(std::string_view field) {
      return has(field) ? std::optional(fields.require(field).u32()) : std::nullopt;
    }

    FieldsReader fields;
    ValueReader name;
    bool taken = false;
  };

  Extra* find(const BString& stream) {
    const auto found = std::find_if(extras_.begin(), extras_.end(), [&](const Extra& extra) {
      return !extra.taken && extra.name.text() == stream;
    });
    return found == extras_.end() ? nullptr : &*found;
  }

  // A field whose stream is missing or told by its bytes has no place.
  void refuse(std::u16string_view field) {
    const std::string name = narrowFromWide(field);
    if (!name.empty() && fields_.has(name))
      fields_.require(name).fail("\"streams\" says that these records can't be read, or aren't there");
  }

  void putAlone(Extra& extra, std::u16string_view field) {
    extra.taken = true;
    refuse(field);
    const bool missing = extra.has("missing");
    if (missing && !extra.fields.require("missing").flag())
      extra.fields.require("missing").fail("only true makes sense here");
    if (!missing) add(extra.name, extra.fields.require("bytes").bytes());
    extra.fields.finish();
  }

  static void putRecord(const ValueReader& record, const Describe& describe, RecordWriter& writer) {
    FieldsReader fields(record);
    if (fields.has("bytes")) {
      writer.bytes(fields.require("bytes").bytes());
    } else {
      TakeFields take(fields, writer);
      describe(take);
    }
    fields.finish();
  }

  void put(const char16_t* stream, std::string bytes, Extra* extra) {
    if (!extra) {
      out_.streams.emplace_back(stream, std::move(bytes));
      return;
    }
    extra->taken = true;
    if (extra->has("rest")) bytes += extra->fields.require("rest").bytes();
    extra->fields.finish();
    add(extra->name, std::move(bytes));
  }

  void add(const ValueReader& name, std::string bytes) {
    const BString text = name.text();
    const bool taken = std::any_of(out_.streams.begin(), out_.streams.end(),
                                   [&](const auto& entry) { return compound::sameName(entry.first, text); });
    if (!compound::isValidName(text)) name.fail("a stream can't have this name");
    if (taken) name.fail("there is a stream of this name already");
    out_.streams.emplace_back(text, std::move(bytes));
  }

  FieldsReader& fields_;
  StorageBytes& out_;
  std::vector<Extra> extras_;
};

void addStorage(StorageBytes& out, FieldsReader& fields, StorageBytes storage) {
  const ValueReader element = fields.require("element");
  storage.name = element.text();
  if (!compound::isValidName(storage.name)) element.fail("a storage can't have this name");
  const bool taken =
      std::any_of(out.storages.begin(), out.storages.end(),
                  [&](const StorageBytes& other) { return compound::sameName(other.name, storage.name); }) ||
      std::any_of(out.streams.begin(), out.streams.end(),
                  [&](const auto& stream) { return compound::sameName(stream.first, storage.name); });
  if (taken) element.fail("there is an element of this name already");
  out.storages.push_back(std::move(storage));
}

void encodeStorage(const ValueReader& value, StorageBytes& out, int level, bool component);

void encodeBelow(FieldsReader& fields, StorageBytes& out, int level) {
  if (!fields.has("storages")) return;
  const ValueReader storages = fields.require("storages");
  if (level >= kDeepestLevel) storages.fail("storages don't lie that deep");
  for (const ValueReader& item : storages.items()) encodeStorage(item, out, level + 1, false);
}

// Adds it to `out`.
void encodeStorage(const ValueReader& value, StorageBytes& out, int level, bool component) {
  FieldsReader fields(value);
  StorageBytes storage;
  fields.has("element");
  storage.clsid = fields.require("clsid").clsid();
  StreamEncoder streams(fields, storage);
  if (const Ref<IComponentRecords> records = component ? componentRecords(storage.clsid) : nullptr)
    records->describeRecords(streams);
  streams.finish();
  encodeBelow(fields, storage, level);
  addStorage(out, fields, std::move(storage));
  fields.finish();
}

}  // namespace

StorageBytes encodeProject(const RecordNode& records) {
  FieldsReader fields(ValueReader(records, ""));
  StorageBytes root;
  if (fields.has("clsid")) root.clsid = fields.require("clsid").clsid();
  StreamEncoder streams(fields, root);
  describeProjectHead(streams);
  describeProjectTail(streams);
  streams.finish();
  for (const ValueReader& item : fields.require("components").items()) encodeStorage(item, root, 1, true);
  fields.finish();
  return root;
}

}  // namespace forgeyard
