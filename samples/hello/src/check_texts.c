#include <string.h>

#include "checks.h"
#include "page.h"

static void check_width(checks* c, size_t width) {
  buffer out = {0};
  const char* line;
  wrap(&out, paragraph, width);
  check(c, "wrapping keeps all words", count_words(out.text) == count_words(paragraph));
  for (line = out.text; *line != '\0'; line += strcspn(line, "\n") + 1) {
    const size_t length = strcspn(line, "\n");
    check(c, "a line fits or is one word", length <= width || memchr(line, ' ', length) == NULL);
  }
  buffer_free(&out);
}

void check_texts(checks* c) {
  buffer out = {0};
  size_t width;
  for (width = 1; width <= 80; ++width) check_width(c, width);
  frame(&out, "a\nlonger");
  check(c, "a frame is as wide as its longest line",
        strcmp(out.text, "+--------+\n| a      |\n| longer |\n+--------+\n") == 0);
  buffer_free(&out);
}
