#include <string.h>

#include "numbers.h"

static const struct {
  int value;
  const char* text;
} steps[] = {{1000, "M"}, {900, "CM"}, {500, "D"}, {400, "CD"}, {100, "C"}, {90, "XC"}, {50, "L"},
             {40, "XL"},  {10, "X"},   {9, "IX"},  {5, "V"},    {4, "IV"},  {1, "I"}};

enum { STEPS = sizeof steps / sizeof steps[0] };

void write_roman(buffer* out, int number) {
  int i;
  for (i = 0; i < STEPS; ++i) {
    for (; number >= steps[i].value; number -= steps[i].value) buffer_add_text(out, steps[i].text);
  }
}

static int sum_of_steps(const char* text) {
  int i;
  int sum = 0;
  for (i = 0; i < STEPS; ++i) {
    const size_t length = strlen(steps[i].text);
    for (; strncmp(text, steps[i].text, length) == 0; text += length) sum += steps[i].value;
  }
  return *text == '\0' ? sum : 0;
}

int read_roman(const char* text) {
  buffer again = {0};
  const int number = sum_of_steps(text);
  int same;
  if (number < 1 || number > LARGEST_ROMAN) return 0;
  write_roman(&again, number);
  same = strcmp(again.text, text) == 0;
  buffer_free(&again);
  return same ? number : 0;
}
