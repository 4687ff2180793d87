#include "workbench/text/json_writer.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "platform/text/narrow.h"
#include "workbench/project/components.h"

namespace forgeyard::workbench {

namespace {

using Fields = RecordNode::Fields;
using List = RecordNode::List;

std::string quotedText(const std::string& narrow) {
  return nlohmann::json(narrow).dump();
}

// Units that aren't part of a character.
bool hasLoneUnits(std::u16string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter c = decodeCharacter(text, at);
    if (c.codePoint >= 0xD800 && c.codePoint <= 0xDFFF) return true;
    at += c.length;
  }
  return false;
}

std::string escapedUnits(std::u16string_view text) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter c = decodeCharacter(text, at);
    if (text[at] == u'%' || (c.codePoint >= 0xD800 && c.codePoint <= 0xDFFF)) {
      std::array<char, 8> unit{};
      std::snprintf(unit.data(), unit.size(), "%%%04X", static_cast<unsigned>(text[at]));
      result += unit.data();
    } else {
      result += narrowFromWide(text.substr(at, c.length));
    }
    at += c.length;
  }
  return result;
}

std::string textAsJson(const BString& text) {
  if (!hasLoneUnits(text)) return quotedText(text.narrow());
  return "{\"escaped\": " + quotedText(escapedUnits(text)) + "}";
}

bool isScalar(const RecordNode& node) {
  return !node.get<Fields>() && !node.get<List>();
}

class Writer {
 public:
  explicit Writer(Detail detail) : detail_(detail) {}

  std::string take() { return std::move(text_); }

  void write(const RecordNode& node) {
    if (const auto* fields = node.get<Fields>()) {
      writeFields(*fields);
    } else if (const auto* list = node.get<List>()) {
      writeList(*list);
    } else {
      text_ += valueAsJson(node);
    }
  }

 private:
  // Within a list: pairs of texts and records of numbers are one thing.
  static bool standsOnOneLine(const RecordNode& item) {
    if (const auto* list = item.get<List>()) return std::all_of(list->begin(), list->end(), isScalar);
    if (const auto* fields = item.get<Fields>())
      return std::all_of(fields->begin(), fields->end(),
                         [](const RecordField& field) { return field.node.get<std::int64_t>() != nullptr; });
    return true;
  }

  bool isShown(const RecordNode& node) const { return detail_ == Detail::All || !node.learnt; }

  void newLine() { text_ += "\n" + std::string(depth_ * 2, ' '); }

  template <class Items, class Node, class Item>
  void writeAll(const Items& items, const char* brackets, Node&& node, Item&& item) {
    text_ += brackets[0];
    ++depth_;
    bool first = true;
    for (const auto& entry : items) {
      if (!isShown(node(entry))) continue;
      if (!first) text_ += ',';
      first = false;
      newLine();
      item(entry);
    }
    --depth_;
    if (!first) newLine();
    text_ += brackets[1];
  }

  void writeFields(const Fields& fields) {
    writeAll(
        fields, "{}", [](const RecordField& field) -> const RecordNode& { return field.node; },
        [&](const RecordField& field) {
          text_ += quotedText(field.name) + ": ";
          write(field.node);
        });
  }

  void writeList(const List& list) {
    writeAll(
        list, "[]", [](const RecordNode& item) -> const RecordNode& { return item; },
        [&](const RecordNode& item) {
          if (standsOnOneLine(item)) {
            text_ += valueAsJson(item);
          } else {
            write(item);
          }
        });
  }

  Detail detail_;
  std::string text_;
  std::size_t depth_ = 0;
};

// Beside each class its name on the command line.
void addKinds(RecordNode& records) {
  RecordNode* components = records.find("components");
  if (!components) return;
  for (RecordNode& component : *components->get<List>()) {
    auto& fields = *component.get<Fields>();
    const auto clsid = std::find_if(fields.begin(), fields.end(),
                                    [](const RecordField& field) { return field.name == "clsid"; });
    const auto guid = parseGuid(clsid->node.get<BString>()->narrow());
    const ComponentKind* kind = guid ? kindOf(*guid) : nullptr;
    fields.insert(clsid + 1, {"kind", kind ? RecordNode(BString::fromNarrow(kind->name)) : RecordNode()});
  }
}

RecordNode omissions(const std::vector<LoadOmission>& leftOut) {
  List list;
  for (const LoadOmission& omission : leftOut)
    list.push_back(
        Fields{{"what", BString::fromNarrow(omission.what)}, {"why", BString::fromNarrow(omission.why)}});
  return {std::move(list)};
}

RecordNode number(std::size_t count) {
  return {static_cast<std::int64_t>(count)};
}

}  // namespace

std::string valueAsJson(const RecordNode& node) {
  if (const auto* flag = node.get<bool>()) return *flag ? "true" : "false";
  if (const auto* count = node.get<std::int64_t>()) return std::to_string(*count);
  if (const auto* text = node.get<BString>()) return textAsJson(*text);
  std::string result;
  if (const auto* list = node.get<List>()) {
    for (const RecordNode& item : *list) result += (result.empty() ? "" : ", ") + valueAsJson(item);
    return "[" + result + "]";
  }
  if (const auto* fields = node.get<Fields>()) {
    for (const RecordField& field : *fields)
      result += (result.empty() ? "" : ", ") + quotedText(field.name) + ": " + valueAsJson(field.node);
    return "{" + result + "}";
  }
  return "null";
}

std::string recordsAsJson(const ProjectRecords& records, Detail detail) {
  RecordNode tree = records.records;
  addKinds(tree);
  // A list of which nothing is shown isn't either.
  if (RecordNode* streams = tree.find("streams")) {
    const auto* list = streams->get<List>();
    streams->learnt =
        std::all_of(list->begin(), list->end(), [](const RecordNode& item) { return item.learnt; });
  }
  if (!records.elementsLeftOut.empty()) tree.add("left_out", omissions(records.elementsLeftOut));
  Writer writer(detail);
  writer.write(tree);
  return writer.take();
}

std::string loadAsJson(const LoadResult& load) {
  RecordNode tree{Fields{{"configurations", number(load.configurations)},
                         {"active", load.active.isNull() ? RecordNode() : RecordNode(load.active)},
                         {"components", number(load.components)},
                         {"connections", number(load.connections)}}};
  if (!load.leftOut.empty()) tree.add("left_out", omissions(load.leftOut));
  Writer writer(Detail::All);
  writer.write(tree);
  return writer.take();
}

}  // namespace forgeyard::workbench
