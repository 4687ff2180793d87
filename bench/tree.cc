#include "bench/tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace forgeyard::bench {

namespace {

std::string numbered(const char* format, int number) {
  char text[64];
  std::snprintf(text, sizeof text, format, number / 100, number);
  return text;
}

}  // namespace

void writeFile(const std::string& path, const std::string& text) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

void touch(const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
  if (file < 0 || futimens(file, nullptr) != 0) throw std::runtime_error("cannot touch " + path);
  close(file);
}

std::string Tree::object(int source, const std::string& directory) const {
  return directory + "/" + std::filesystem::path(sources[static_cast<std::size_t>(source)]).stem().string() +
         ".obj";
}

Tree makeTree(const std::string& root, int sources, int headers, int headersEach) {
  Tree tree;
  tree.root = root;
  for (int i = 0; i < headers; ++i) {
    tree.headers.push_back(numbered("inc/part%02d/header%05d.h", i));
    writeFile(root + "/" + tree.headers.back(), "/* declarations */\n");
  }
  for (int i = 0; i < sources; ++i) {
    tree.sources.push_back(numbered("src/part%02d/source%05d.c", i));
    std::string text;
    std::vector<int> includes;
    for (int j = 0; j < headersEach; ++j) {
      const int header = (i + j * (headers / headersEach)) % headers;
      includes.push_back(header);
      text += "#include \"" + tree.headers[static_cast<std::size_t>(header)] + "\"\n";
    }
    writeFile(root + "/" + tree.sources.back(), text);
    tree.includes.push_back(std::move(includes));
  }
  return tree;
}

void writeNinjaFile(const Tree& tree, const std::string& standIn, bool dependencies) {
  std::string text = "rule cc\n  command = " + standIn + " -c $in -o$out";
  if (dependencies) text += " -MD -MF $out.d -MT $out\n  depfile = $out.d\n  deps = gcc";
  text += "\n";
  for (int i = 0; i < static_cast<int>(tree.sources.size()); ++i) {
    text +=
        "build " + tree.object(i, "obj-ninja") + ": cc " + tree.sources[static_cast<std::size_t>(i)] + "\n";
  }
  writeFile(tree.root + "/build.ninja", text);
}

}  // namespace forgeyard::bench
