#include <string.h>

#include "checks.h"
#include "numbers.h"

static int spells(int number, const char* words) {
  buffer out = {0};
  int same;
  spell(&out, number);
  same = strcmp(out.text, words) == 0;
  buffer_free(&out);
  return same;
}

static int reads_what_it_writes(int number) {
  buffer out = {0};
  int same;
  write_roman(&out, number);
  same = read_roman(out.text) == number;
  buffer_free(&out);
  return same;
}

void check_numbers(checks* c) {
  int number;
  int primes = 0;
  for (number = 1; number <= LARGEST_ROMAN; ++number) {
    check(c, "a Roman numeral reads back", reads_what_it_writes(number));
    primes += is_prime(number);
  }
  check(c, "nothing else is a Roman numeral",
        read_roman("IIII") == 0 && read_roman("VX") == 0 && read_roman("MCMx") == 0 && read_roman("") == 0);
  check(c, "there are 550 primes below 4000", primes == 550);
  check(c, "zero has a name", spells(0, "zero"));
  check(c, "round numbers end with their unit", spells(300, "three hundred") && spells(1000, "one thousand"));
  check(c, "large numbers are put together",
        spells(LARGEST_SPELLED, "nine hundred ninety-nine thousand nine hundred ninety-nine"));
}
