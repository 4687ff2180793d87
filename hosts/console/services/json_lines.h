#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "hosts/console/services/line_writer.h"

namespace forgeyard::console {

// Standard output under --json: one JSON object on each line, its "type" first. docs/output.md lists them
// all.
//
// A command needs nothing of this. Its lines become {"type":"line","text":...}, what complain() says
// {"type":"message","text":...}, the Failure that ends it {"type":"error","message":...}, and its exit code
// the last line, {"type":"result","exit_code":...}. A command that has more to tell than lines asks the
// options, writes to the same place (session.output(), or standardOutput() where there is no session), and
// includes <nlohmann/json.hpp> in its own .cc alone:
//
//   if (session.options().json) {
//     for (const State& one : states)
//       writeObject(session.output(), "state", {{"component", one.name}, {"outdated", one.count}});
//   } else {
//     ...lines...
//   }
//
// The members of an object stand in the order given. Names and paths go in as UTF-8; bytes that are none are
// replaced. Each type of objects, with its fields, gets its row in docs/output.md.
void writeObject(LineWriter& out, std::string_view type, const nlohmann::ordered_json& members);

// A line of text as such an object, without the line feed.
std::string lineObject(std::string_view text);

}  // namespace forgeyard::console
