/* Paragraphs. */
#ifndef HELLO_WRAP_H
#define HELLO_WRAP_H

#include "buffer.h"

/* Adds the words of `text` to `out`, in lines of at most `width` characters; a longer word has a line for
 * itself. */
void wrap(buffer* out, const char* text, size_t width);

size_t count_words(const char* text);

#endif
