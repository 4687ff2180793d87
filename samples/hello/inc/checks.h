/* What the program says about itself. */
#ifndef HELLO_CHECKS_H
#define HELLO_CHECKS_H

typedef struct checks {
  int passed;
  int failed;
} checks;

void check(checks* c, const char* what, int holds);
void check_numbers(checks* c);
void check_texts(checks* c);

#endif
