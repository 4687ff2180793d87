#ifndef CONSOLE_H
#define CONSOLE_H

typedef unsigned char byte;
typedef unsigned int word; /* 32 bits, and an address */

void put_char(char c);
void put_text(const char* text);
void put_number(word number);        /* decimal */
void put_hex(word number, int digits);

/* Sends what put_ functions have collected. */
void flush_output(void);

/* The next line without its end; 0 when there is none. What doesn't fit is dropped. */
int get_line(char* line, int size);

#endif
