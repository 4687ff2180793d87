#include "buffer.h"

#include <stdlib.h>
#include <string.h>

static void reserve(buffer* b, size_t capacity) {
  char* text;
  if (capacity <= b->capacity) return;
  if (capacity < 2 * b->capacity) capacity = 2 * b->capacity;
  text = realloc(b->text, capacity);
  if (text == NULL) abort();
  b->text = text;
  b->capacity = capacity;
}

void buffer_add(buffer* b, const char* text, size_t length) {
  reserve(b, b->length + length + 1);
  memcpy(b->text + b->length, text, length);
  b->length += length;
  b->text[b->length] = '\0';
}

void buffer_add_text(buffer* b, const char* text) {
  buffer_add(b, text, strlen(text));
}

void buffer_add_repeated(buffer* b, char c, size_t count) {
  while (count-- > 0) buffer_add(b, &c, 1);
}

void buffer_free(buffer* b) {
  free(b->text);
  memset(b, 0, sizeof *b);
}
