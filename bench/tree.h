#pragma once

#include <string>
#include <vector>

namespace forgeyard::bench {

// A made-up C project of the size of a large real one: sources in directories of a hundred, each including
// the same number of headers, so that every header has equally many users.
struct Tree {
  std::string root;                        // host path
  std::vector<std::string> sources;        // relative to the root
  std::vector<std::string> headers;        // relative to the root
  std::vector<std::vector<int>> includes;  // for each source: indices of its headers
  std::string object(int source, const std::string& directory) const;  // relative to the root
};

Tree makeTree(const std::string& root, int sources, int headers, int headersEach);

// build.ninja for the tree, with the stand-in as its compiler and objects in obj-ninja/.
void writeNinjaFile(const Tree& tree, const std::string& standIn, bool dependencies);

void writeFile(const std::string& path, const std::string& text);
// Gives a file the present time, making it if need be.
void touch(const std::string& path);

}  // namespace forgeyard::bench
