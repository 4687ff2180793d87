#include "table.h"

#include <string.h>

void table_cell(buffer* out, const char* text, size_t width, int right_aligned) {
  const size_t length = strlen(text);
  const size_t fill = length < width ? width - length : 0;
  if (right_aligned) buffer_add_repeated(out, ' ', fill);
  buffer_add_text(out, text);
  if (!right_aligned) buffer_add_repeated(out, ' ', fill);
  buffer_add_text(out, "  ");
}

void table_end_row(buffer* out) {
  while (out->length > 0 && out->text[out->length - 1] == ' ') out->text[--out->length] = '\0';
  buffer_add_text(out, "\n");
}
