/* Prints a page of numbers, then checks itself; the exit code is 0 if all checks held. */
#include <stdio.h>

#include "checks.h"
#include "page.h"

int main(void) {
  buffer page = {0};
  checks all = {0};

  write_page(&page);
  fputs(page.text, stdout);
  buffer_free(&page);

  check_numbers(&all);
  check_texts(&all);
  printf("%d checks passed, %d failed\n", all.passed, all.failed);
  return all.failed == 0 ? 0 : 1;
}
