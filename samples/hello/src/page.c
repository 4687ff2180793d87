#include "page.h"

#include <stdio.h>

const char paragraph[] =
    "This page was put together by twelve small files in two directories. Some of them include headers that "
    "include others, and one of the directories has a blank in its name.";

static void number_row(buffer* out, int number) {
  buffer cell = {0};
  char digits[16];
  snprintf(digits, sizeof digits, "%d", number);
  table_cell(out, digits, 6, 1);
  write_roman(&cell, number);
  table_cell(out, cell.text, 10, 0);
  buffer_free(&cell);
  spell(&cell, number);
  table_cell(out, cell.text, 36, 0);
  buffer_free(&cell);
  if (is_prime(number)) table_cell(out, "prime", 5, 0);
  table_end_row(out);
}

void write_page(buffer* out) {
  static const int numbers[] = {1, 2, 4, 9, 14, 42, 97, 100, 444, 1024, 1999, 2027, 3999};
  size_t i;
  buffer greeting = {0};
  wrap(&greeting, "Hello, world!", 60);
  wrap(&greeting, paragraph, 60);
  frame(out, greeting.text);
  buffer_free(&greeting);
  for (i = 0; i < sizeof numbers / sizeof numbers[0]; ++i) number_row(out, numbers[i]);
}
