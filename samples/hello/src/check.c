#include <stdio.h>

#include "checks.h"

void check(checks* c, const char* what, int holds) {
  if (holds) {
    ++c->passed;
    return;
  }
  ++c->failed;
  printf("does not hold: %s\n", what);
}
