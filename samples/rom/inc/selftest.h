#ifndef SELFTEST_H
#define SELFTEST_H

/* How many checks of the start-up code and the machine failed; tells each. */
int self_test(void);

#endif
