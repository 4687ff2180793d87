/* Rows of cells. */
#ifndef HELLO_TABLE_H
#define HELLO_TABLE_H

#include "buffer.h"

/* Adds `text` to `out` and fills up to `width`, at the left if `right_aligned` is not 0. */
void table_cell(buffer* out, const char* text, size_t width, int right_aligned);
void table_end_row(buffer* out);

#endif
