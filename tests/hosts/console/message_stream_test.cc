#include "hosts/console/serve/message_stream.h"

#include <gtest/gtest.h>

#include <vector>

namespace forgeyard::console {
namespace {

struct Taken {
  std::vector<std::string> messages;
  std::vector<std::size_t> tooLarge;
  bool good = true;
};

// Feeds the bytes in pieces of that size.
Taken take(std::string_view bytes, std::size_t piece) {
  Taken taken;
  MessageReader reader({[&](std::string message) { taken.messages.push_back(std::move(message)); },
                        [&](std::size_t size) { taken.tooLarge.push_back(size); }});
  for (std::size_t at = 0; at < bytes.size(); at += piece)
    taken.good = reader.feed(bytes.substr(at, piece)) && taken.good;
  return taken;
}

TEST(MessageReader, FindsMessagesHoweverTheyAreCut) {
  const std::string stream = framed("one") + "content-length:3 \nX-Other: y\n\ntwo" + framed("") +
                             "Content-Type: z\r\nCONTENT-LENGTH: 6\r\n\r\n{\r\n\r\n}" + framed("unfinished");
  for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
    const Taken taken = take(std::string_view(stream).substr(0, stream.size() - 1), piece);
    EXPECT_TRUE(taken.good) << piece;
    EXPECT_EQ(taken.messages, (std::vector<std::string>{"one", "two", "", "{\r\n\r\n}"})) << piece;
  }
}

TEST(MessageReader, LeavesOutWhatIsTooLargeAndGoesOn) {
  const std::size_t large = MessageReader::kLargest + 1;
  std::string stream = "Content-Length: " + std::to_string(large) + "\r\n\r\n";
  stream.append(large, 'x');
  stream += framed("next");
  for (const std::size_t piece : {std::size_t{65536}, stream.size()}) {
    const Taken taken = take(stream, piece);
    EXPECT_TRUE(taken.good);
    EXPECT_EQ(taken.tooLarge, std::vector<std::size_t>{large});
    EXPECT_EQ(taken.messages, std::vector<std::string>{"next"});
  }
}

TEST(MessageReader, SaysWhenTheBytesAreNoMessages) {
  for (const std::string bytes :
       {"{}\r\n\r\n", "Content-Length: x\r\n\r\n", "Content-Length: -1\r\n\r\n", "Content-Type: a\r\n\r\n",
        "\r\n\r\n", "Content-Length: 99999999999999999999999\r\n\r\n"}) {
    EXPECT_FALSE(take(bytes, 3).good) << bytes;
  }
  EXPECT_FALSE(take(std::string(8192, 'a'), 100).good) << "a header without end";
}

}  // namespace
}  // namespace forgeyard::console
