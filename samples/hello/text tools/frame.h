/* A box around lines. */
#ifndef HELLO_FRAME_H
#define HELLO_FRAME_H

#include "buffer.h"

/* Adds a box around the lines of `text` to `out`. */
void frame(buffer* out, const char* text);

#endif
