#include "model/records/record_values.h"

#include <algorithm>

namespace forgeyard {

namespace {

constexpr std::size_t kBytesInLine = 32;

RecordNode textNode(const BString& text) {
  return text.isNull() ? RecordNode() : RecordNode(text);
}

RecordNode numberNode(std::int64_t number) {
  return {number};
}

int digitOf(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

const char* kindOf(const RecordNode& node) {
  constexpr const char* kKinds[] = {"null", "true or false", "a number", "a text", "a list", "an object"};
  return kKinds[node.value.index()];
}

}  // namespace

// ValueReader

void ValueReader::fail(std::string what) const {
  throw RecordFaultError({where_, node_->line, std::move(what), "", {}});
}

BString ValueReader::text() const {
  const BString* text = node_->get<BString>();
  if (!text) fail(std::string("a text belongs here, not ") + kindOf(*node_));
  return *text;
}

std::int64_t ValueReader::number(std::int64_t least, std::int64_t greatest) const {
  const std::int64_t* number = node_->get<std::int64_t>();
  if (!number) fail(std::string("a number belongs here, not ") + kindOf(*node_));
  if (*number < least || *number > greatest)
    fail(std::to_string(*number) + " is not between " + std::to_string(least) + " and " +
         std::to_string(greatest));
  return *number;
}

bool ValueReader::flag() const {
  const bool* flag = node_->get<bool>();
  if (!flag) fail(std::string("true or false belongs here, not ") + kindOf(*node_));
  return *flag;
}

Guid ValueReader::clsid() const {
  const std::optional<Guid> found = parseGuid(text().narrow());
  if (!found) fail("this is no class identifier, {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}");
  return *found;
}

std::string ValueReader::bytes() const {
  std::string bytes;
  for (const ValueReader& line : items()) {
    const BString text = line.text();
    const std::u16string_view digits = text.view();
    if (digits.size() % 2 != 0) line.fail("a byte has two hexadecimal digits; one is missing");
    for (std::size_t i = 0; i < digits.size(); i += 2) {
      const int high = digitOf(digits[i]);
      const int low = digitOf(digits[i + 1]);
      if (high < 0 || low < 0) line.fail("these are no hexadecimal digits");
      bytes.push_back(static_cast<char>(high * 16 + low));
    }
  }
  return bytes;
}

std::vector<ValueReader> ValueReader::items() const {
  const auto* list = node_->get<RecordNode::List>();
  if (!list) fail(std::string("a list belongs here, not ") + kindOf(*node_));
  std::vector<ValueReader> items;
  items.reserve(list->size());
  for (const RecordNode& item : *list)
    items.emplace_back(item, where_ + "[" + std::to_string(items.size()) + "]");
  return items;
}

// FieldsReader

FieldsReader::FieldsReader(ValueReader value) : value_(std::move(value)) {
  if (!value_.node().get<RecordNode::Fields>())
    value_.fail(std::string("an object belongs here, not ") + kindOf(value_.node()));
}

ValueReader FieldsReader::field(const RecordNode& node, std::string_view name) const {
  return {node, value_.where().empty() ? std::string(name) : value_.where() + "." + std::string(name)};
}

bool FieldsReader::has(std::string_view name) {
  if (std::find(known_.begin(), known_.end(), name) == known_.end()) known_.emplace_back(name);
  return value_.node().find(name) != nullptr;
}

ValueReader FieldsReader::require(std::string_view name) {
  if (!has(name)) {
    throw RecordFaultError({value_.where(), value_.node().line,
                            "\"" + std::string(name) + "\" is missing here", std::string(name), unasked()});
  }
  return field(*value_.node().find(name), name);
}

std::vector<std::string> FieldsReader::unasked() const {
  std::vector<std::string> names;
  for (const RecordField& given : *value_.node().get<RecordNode::Fields>()) {
    if (std::find(known_.begin(), known_.end(), given.name) == known_.end()) names.push_back(given.name);
  }
  return names;
}

void FieldsReader::finish() const {
  const std::vector<std::string> unknown = unasked();
  if (unknown.empty()) return;
  const ValueReader first = field(*value_.node().find(unknown.front()), unknown.front());
  throw RecordFaultError(
      {first.where(), first.node().line, "there is no such key here", unknown.front(), known_});
}

// Values

RecordNode bytesNode(std::string_view bytes) {
  constexpr const char16_t* kDigits = u"0123456789ABCDEF";
  RecordNode::List lines;
  for (std::size_t at = 0; at < bytes.size(); at += kBytesInLine) {
    std::u16string line;
    for (const char c : bytes.substr(at, kBytesInLine)) {
      const auto byte = static_cast<unsigned char>(c);
      line += kDigits[byte / 16];
      line += kDigits[byte % 16];
    }
    lines.emplace_back(BString(line));
  }
  return {std::move(lines)};
}

RecordNode clsidNode(const Guid& clsid) {
  return {BString::fromNarrow("{" + formatGuid(clsid) + "}")};
}

RecordNode textsNode(const std::vector<BString>& texts) {
  RecordNode::List list;
  for (const BString& text : texts) list.push_back(text);
  return {std::move(list)};
}

RecordNode pairsNode(const TextPairs& pairs) {
  RecordNode::List list;
  for (const auto& [name, value] : pairs)
    list.push_back(RecordNode(RecordNode::List{textNode(name), textNode(value)}));
  return {std::move(list)};
}

// ShowFields

void ShowFields::show(std::u16string_view name, RecordNode node) {
  node.learnt = node.learnt || learnt_;
  learnt_ = false;
  out_.add(narrowFromWide(name), std::move(node));
}

RecordFields& ShowFields::learnt() {
  learnt_ = true;
  return *this;
}

std::uint32_t ShowFields::version(std::uint32_t) {
  const std::uint32_t version = record_.u32();
  show(u"version", numberNode(version));
  return version;
}

void ShowFields::unusedVersion(std::u16string_view name) {
  if (const std::uint32_t version = record_.u32(); version != 0) show(name, numberNode(version));
}

void ShowFields::text(std::u16string_view name, BString& value) {
  value = record_.listedString();
  show(name, value);
}

void ShowFields::fileName(std::u16string_view name, const BString& persistAs, BString& value) {
  learnt_ = persistAs.view().starts_with(u'.');
  text(name, value);
}

void ShowFields::number(std::u16string_view name, std::int32_t& value, bool stored) {
  if (stored) value = record_.i32();
  show(name, numberNode(value));
}

void ShowFields::number(std::u16string_view name, std::uint32_t& value) {
  value = record_.u32();
  show(name, numberNode(value));
}

void ShowFields::flag(std::u16string_view name, bool& value, bool stored) {
  const std::uint8_t byte = stored ? record_.u8() : std::uint8_t{value};
  show(name, byte > 1 ? numberNode(byte) : RecordNode(byte == 1));
}

void ShowFields::texts(std::u16string_view name, std::vector<BString>& value, bool stored) {
  LoadFields(record_).texts(name, value, stored);
  show(name, textsNode(value));
}

void ShowFields::pairs(std::u16string_view name, TextPairs& value, bool stored) {
  LoadFields(record_).pairs(name, value, stored);
  show(name, pairsNode(value));
}

// TakeFields

bool TakeFields::storedHere(std::u16string_view name, bool stored, const RecordNode& otherwise) {
  if (stored) return true;
  const std::string key = narrowFromWide(name);
  if (fields_.has(key)) {
    const ValueReader value = fields_.require(key);
    if (!(value.node() == otherwise))
      value.fail("a record of version " + std::to_string(version_) +
                 " doesn't store this; raise its version");
  }
  return false;
}

std::uint32_t TakeFields::version(std::uint32_t) {
  version_ = field(u"version").u32();
  record_.u32(version_);
  return version_;
}

void TakeFields::unusedVersion(std::u16string_view name) {
  record_.u32(fields_.has(narrowFromWide(name)) ? field(name).u32() : 0);
}

void TakeFields::text(std::u16string_view name, BString&) {
  record_.listedString(field(name).text());
}

void TakeFields::fileName(std::u16string_view name, const BString&, BString& value) {
  text(name, value);
}

void TakeFields::number(std::u16string_view name, std::int32_t& value, bool stored) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (storedHere(name, stored, numberNode(value)))
    record_.i32(static_cast<std::int32_t>(field(name).number(Limits::min(), Limits::max())));
}

void TakeFields::number(std::u16string_view name, std::uint32_t&) {
  record_.u32(field(name).u32());
}

void TakeFields::flag(std::u16string_view name, bool& value, bool stored) {
  if (!storedHere(name, stored, RecordNode(value))) return;
  const ValueReader flag = field(name);
  // Any byte but 0 is taken for true, and a file may have any.
  const bool isByte = flag.node().get<std::int64_t>() != nullptr;
  record_.u8(static_cast<std::uint8_t>(isByte ? flag.number(0, 255) : flag.flag()));
}

void TakeFields::texts(std::u16string_view name, std::vector<BString>& value, bool stored) {
  if (!storedHere(name, stored, textsNode(value))) return;
  std::vector<BString> texts;
  for (const ValueReader& item : field(name).items()) texts.push_back(item.text());
  SaveFields(record_).texts(name, texts, true);
}

void TakeFields::pairs(std::u16string_view name, TextPairs& value, bool stored) {
  if (!storedHere(name, stored, pairsNode(value))) return;
  TextPairs pairs;
  for (const ValueReader& item : field(name).items()) {
    const std::vector<ValueReader> both = item.items();
    if (both.size() != 2) item.fail("a name and a value belong here");
    pairs.emplace_back(both[0].textOrNull(), both[1].textOrNull());
  }
  SaveFields(record_).pairs(name, pairs, true);
}

}  // namespace forgeyard
