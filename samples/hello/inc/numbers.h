/* Numbers and how people write them. */
#ifndef HELLO_NUMBERS_H
#define HELLO_NUMBERS_H

#include "buffer.h"

enum { LARGEST_ROMAN = 3999, LARGEST_SPELLED = 999999 };

/* Roman numerals, for 1 to LARGEST_ROMAN. Reading gives 0 for anything that writing doesn't give. */
void write_roman(buffer* out, int number);
int read_roman(const char* text);

/* English words, for 0 to LARGEST_SPELLED. */
void spell(buffer* out, int number);

int is_prime(int number);

#endif
