/* A text that grows as it is written to. */
#ifndef HELLO_BUFFER_H
#define HELLO_BUFFER_H

#include <stddef.h>

typedef struct buffer {
  char* text; /* always ends with a zero byte once something was added */
  size_t length;
  size_t capacity;
} buffer;

void buffer_add(buffer* b, const char* text, size_t length);
void buffer_add_text(buffer* b, const char* text);
void buffer_add_repeated(buffer* b, char c, size_t count);
void buffer_free(buffer* b);

#endif
