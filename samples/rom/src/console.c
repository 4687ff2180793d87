#include "console.h"

#include "system.h"

static char output[128];
static int used;

void flush_output(void) {
  int sent = 0;
  while (sent < used) {
    int size = system_write(output + sent, used - sent);
    if (size <= 0) break; /* nobody listens */
    sent += size;
  }
  used = 0;
}

void put_char(char c) {
  output[used++] = c;
  if (c == '\n' || used == sizeof output) flush_output();
}

void put_text(const char* text) {
  while (*text) put_char(*text++);
}

void put_number(word number) {
  if (number >= 10) put_number(number / 10);
  put_char((char)('0' + number % 10));
}

void put_hex(word number, int digits) {
  while (digits-- > 0) put_char("0123456789ABCDEF"[number >> 4 * digits & 15]);
}

int get_line(char* line, int size) {
  char c;
  int length = 0;
  flush_output();
  while (system_read(&c, 1) == 1) {
    if (c == '\n') {
      line[length] = 0;
      return 1;
    }
    if (length < size - 1) line[length++] = c;
  }
  line[length] = 0;
  return length > 0; /* a last line may lack its end */
}
