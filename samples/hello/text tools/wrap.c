#include "wrap.h"

#include <string.h>

static const char blanks[] = " \n";

/* The next word at or behind `*at`, which moves behind it; its length is 0 at the end of the text. */
static size_t next_word(const char** at, const char** word) {
  size_t length;
  *word = *at + strspn(*at, blanks);
  length = strcspn(*word, blanks);
  *at = *word + length;
  return length;
}

void wrap(buffer* out, const char* text, size_t width) {
  size_t column = 0;
  size_t length;
  const char* word;
  while ((length = next_word(&text, &word)) > 0) {
    if (column > 0 && column + 1 + length > width) {
      buffer_add_text(out, "\n");
      column = 0;
    }
    if (column > 0) {
      buffer_add_text(out, " ");
      ++column;
    }
    buffer_add(out, word, length);
    column += length;
  }
  if (column > 0) buffer_add_text(out, "\n");
}

size_t count_words(const char* text) {
  size_t count = 0;
  const char* word;
  while (next_word(&text, &word) > 0) ++count;
  return count;
}
