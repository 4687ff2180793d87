#include "numbers.h"

int is_prime(int number) {
  int divisor;
  if (number < 2) return 0;
  for (divisor = 2; divisor <= number / divisor; ++divisor) {
    if (number % divisor == 0) return 0;
  }
  return 1;
}
