#include "workbench/text/json_reader.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "workbench/base/nearest.h"
#include "workbench/project/components.h"

namespace forgeyard::workbench {

namespace {

using Json = nlohmann::json;
using Fields = RecordNode::Fields;
using List = RecordNode::List;

// Deeper than any storage lies.
constexpr std::size_t kDeepest = 100;

[[noreturn]] void fail(std::uint32_t line, const std::string& what) {
  throw JsonFault((line ? "line " + std::to_string(line) + ": " : "") + what);
}

// Bytes, and how many lines have ended so far.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* at, std::uint32_t* line) : at_(at), line_(line) {}
  reference operator*() const { return *at_; }
  CountingIterator& operator++() {
    if (*at_ == '\n') ++*line_;
    ++at_;
    return *this;
  }
  bool operator==(const CountingIterator& other) const { return at_ == other.at_; }
  bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  std::uint32_t* line_;
};

int hexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return c >= u'a' && c <= u'f' ? c - u'a' + 10 : -1;
}

BString unescaped(const BString& text, std::uint32_t line) {
  const std::u16string_view from = text.view();
  std::u16string result;
  for (std::size_t at = 0; at < from.size(); ++at) {
    if (from[at] != u'%') {
      result += from[at];
      continue;
    }
    int unit = 0;
    for (int digit = 0; digit < 4; ++digit) {
      const int value = ++at < from.size() ? hexDigit(from[at]) : -1;
      if (value < 0) fail(line, "behind \"%\" in an escaped text stand four hexadecimal digits");
      unit = unit * 16 + value;
    }
    result += static_cast<char16_t>(unit);
  }
  return result;
}

// Builds the tree from the parser's events.
class TreeBuilder final : public nlohmann::json_sax<Json> {
 public:
  explicit TreeBuilder(const std::uint32_t& line) : line_(line) {}

  RecordNode take() { return std::move(root_); }

  bool null() override { return put({}); }
  bool boolean(bool value) override { return put({value}); }
  bool number_integer(std::int64_t value) override { return put({value}); }
  bool number_unsigned(std::uint64_t value) override {
    if (value > static_cast<std::uint64_t>(INT64_MAX)) fail(line(), "this number is too great");
    return put({static_cast<std::int64_t>(value)});
  }
  bool number_float(double, const std::string& text) override { fail(line(), text + " is no whole number"); }
  bool string(std::string& value) override { return put({BString::fromNarrow(value)}); }
  bool binary(Json::binary_t&) override { return false; }
  bool start_object(std::size_t) override { return open(Fields{}); }
  bool start_array(std::size_t) override { return open(List{}); }
  bool end_array() override { return close(); }
  bool end_object() override {
    Level& level = levels_.back();
    const auto& fields = *level.node.get<Fields>();
    if (fields.size() == 1 && fields[0].name == "escaped" && fields[0].node.get<BString>())
      level.node.value = unescaped(*fields[0].node.get<BString>(), fields[0].node.line);
    return close();
  }
  bool key(std::string& value) override {
    Level& level = levels_.back();
    if (!level.keys.insert(value).second) fail(line_, "the key \"" + value + "\" stands here twice");
    level.key = value;
    level.keyLine = line_;
    return true;
  }
  bool parse_error(std::size_t, const std::string&, const Json::exception& error) override {
    // "[json.exception.parse_error.101] parse error at line 3, column 5: syntax error while ..."
    std::string what = error.what();
    what = what.substr(what.find("] ") == what.npos ? 0 : what.find("] ") + 2);
    if (const auto place = what.find(": "); what.starts_with("parse error at") && place != what.npos)
      what = what.substr(place + 2);
    fail(line_, what);
  }

 private:
  struct Level {
    RecordNode node;
    std::set<std::string> keys;
    std::string key;
    std::uint32_t keyLine = 0;
  };

  // A number is read with the character behind it, so the line of its key tells better where it stands.
  std::uint32_t line() const {
    return levels_.empty() || !levels_.back().node.get<Fields>() ? line_ : levels_.back().keyLine;
  }

  bool put(RecordNode node) {
    if (node.line == 0) node.line = line();
    if (levels_.empty()) {
      root_ = std::move(node);
    } else if (auto* list = levels_.back().node.get<List>()) {
      list->push_back(std::move(node));
    } else {
      levels_.back().node.add(levels_.back().key, std::move(node));
    }
    return true;
  }

  bool open(RecordNode node) {
    if (levels_.size() == kDeepest) fail(line_, "values don't lie that deep");
    node.line = line_;
    levels_.push_back({std::move(node), {}, "", 0});
    return true;
  }

  bool close() {
    RecordNode node = std::move(levels_.back().node);
    levels_.pop_back();
    return put(std::move(node));
  }

  const std::uint32_t& line_;
  RecordNode root_;
  std::vector<Level> levels_;
};

// Takes a field out.
std::optional<RecordNode> take(RecordNode& node, std::string_view name) {
  auto& fields = *node.get<Fields>();
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [&](const RecordField& field) { return field.name == name; });
  if (found == fields.end()) return std::nullopt;
  RecordNode value = std::move(found->node);
  fields.erase(found);
  return value;
}

std::string textIn(const RecordNode& node, std::string_view name) {
  const RecordNode* field = node.find(name);
  const BString* text = field ? field->get<BString>() : nullptr;
  return text ? text->narrow() : "";
}

const ComponentKind& kindNamed(const std::string& name, std::uint32_t line) {
  const auto kinds = componentKinds();
  const auto found =
      std::find_if(kinds.begin(), kinds.end(), [&](const auto& kind) { return kind.name == name; });
  if (found != kinds.end()) return *found;
  std::vector<std::string> names;
  for (const ComponentKind& kind : kinds) names.emplace_back(kind.name);
  fail(line, "there is no kind \"" + name + "\" of components." + suggestion(name, names, "kinds"));
}

// "kind" is there for people; it may stand alone, and must not say something else than "clsid".
void resolveKind(RecordNode& component) {
  if (!component.get<Fields>()) return;
  const std::optional<RecordNode> kind = take(component, "kind");
  if (!kind || kind->isNull()) return;
  const BString* name = kind->get<BString>();
  if (!name) fail(kind->line, "\"kind\" is a text");
  const ComponentKind& wanted = kindNamed(name->narrow(), kind->line);
  const std::string clsid = "{" + formatGuid(wanted.clsid) + "}";
  if (!component.find("clsid")) {
    component.add("clsid", BString::fromNarrow(clsid));
    return;
  }
  const auto given = parseGuid(textIn(component, "clsid"));
  if (given && *given != wanted.clsid)
    fail(kind->line, "\"kind\" and \"clsid\" say different things: " + clsid + " is \"" + wanted.name + "\"");
}

std::vector<LoadOmission> takeLeftOut(RecordNode& records) {
  std::vector<LoadOmission> leftOut;
  const std::optional<RecordNode> node = take(records, "left_out");
  const auto* list = node ? node->get<List>() : nullptr;
  if (node && !list) fail(node->line, "\"left_out\" is a list");
  if (list) {
    for (const RecordNode& entry : *list) leftOut.push_back({textIn(entry, "what"), textIn(entry, "why")});
  }
  return leftOut;
}

}  // namespace

ReadJson readJson(std::string_view text) {
  std::uint32_t line = 1;
  TreeBuilder builder(line);
  const CountingIterator begin(text.data(), &line);
  const CountingIterator end(text.data() + text.size(), &line);
  if (!Json::sax_parse(begin, end, &builder)) fail(line, "this is no JSON");
  ReadJson read;
  read.records = builder.take();
  if (!read.records.get<Fields>()) fail(read.records.line, "a project is an object, {...}");
  read.leftOut = takeLeftOut(read.records);
  if (RecordNode* components = read.records.find("components"); components && components->get<List>()) {
    for (RecordNode& component : *components->get<List>()) resolveKind(component);
  }
  return read;
}

std::string faultText(const RecordFault& fault) {
  std::string text = fault.line ? "line " + std::to_string(fault.line) + ": " : "";
  if (!fault.where.empty()) text += fault.where + ": ";
  text += fault.what + ".";
  const auto near = nearest(fault.key, fault.others);
  if (fault.key.empty() || !near) return text;
  const bool isMissing = fault.where.empty() || !fault.where.ends_with(fault.key);
  return text + (isMissing ? " Is it meant by \"" + *near + "\"?" : " Did you mean \"" + *near + "\"?");
}

}  // namespace forgeyard::workbench
