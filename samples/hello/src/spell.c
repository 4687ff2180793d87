#include "numbers.h"

static const char* const small[] = {"zero",    "one",     "two",       "three",    "four",
                                    "five",    "six",     "seven",     "eight",    "nine",
                                    "ten",     "eleven",  "twelve",    "thirteen", "fourteen",
                                    "fifteen", "sixteen", "seventeen", "eighteen", "nineteen"};
static const char* const tens[] = {"",      "",      "twenty",  "thirty", "forty",
                                   "fifty", "sixty", "seventy", "eighty", "ninety"};

static void spell_below_hundred(buffer* out, int number) {
  if (number < 20) {
    buffer_add_text(out, small[number]);
    return;
  }
  buffer_add_text(out, tens[number / 10]);
  if (number % 10 == 0) return;
  buffer_add_text(out, "-");
  buffer_add_text(out, small[number % 10]);
}

/* The part of `number` above `unit`, its name and the blank that a rest needs; gives the rest. */
static int spell_part(buffer* out, int number, int unit, const char* name) {
  if (number < unit) return number;
  spell(out, number / unit);
  buffer_add_text(out, name);
  if (number % unit != 0) buffer_add_text(out, " ");
  return number % unit;
}

void spell(buffer* out, int number) {
  const int below_thousand = spell_part(out, number, 1000, " thousand");
  const int below_hundred = spell_part(out, below_thousand, 100, " hundred");
  if (below_hundred > 0 || number == 0) spell_below_hundred(out, below_hundred);
}
