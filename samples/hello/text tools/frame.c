#include "frame.h"

#include <string.h>

static size_t longest_line(const char* text) {
  size_t longest = 0;
  while (*text != '\0') {
    const size_t length = strcspn(text, "\n");
    if (length > longest) longest = length;
    text += length + (text[length] == '\n');
  }
  return longest;
}

static void edge(buffer* out, size_t width) {
  buffer_add_text(out, "+");
  buffer_add_repeated(out, '-', width + 2);
  buffer_add_text(out, "+\n");
}

void frame(buffer* out, const char* text) {
  const size_t width = longest_line(text);
  edge(out, width);
  while (*text != '\0') {
    const size_t length = strcspn(text, "\n");
    buffer_add_text(out, "| ");
    buffer_add(out, text, length);
    buffer_add_repeated(out, ' ', width - length);
    buffer_add_text(out, " |\n");
    text += length + (text[length] == '\n');
  }
  edge(out, width);
}
