/* The page that the program prints. */
#ifndef HELLO_PAGE_H
#define HELLO_PAGE_H

#include "frame.h"
#include "numbers.h"
#include "table.h"
#include "wrap.h"

extern const char paragraph[];

void write_page(buffer* out);

#endif
