/* A ROM monitor: tests the machine and shows its memory, at the console. */
#include "commands.h"
#include "console.h"
#include "crc32.h"
#include "memory.h"
#include "selftest.h"

int main(void) {
  char line[80];
  int failures;

  put_text("Monitor, ");
  put_number((word)(rom_end - rom_start));
  put_text(" bytes of ROM\n");
  failures = self_test();
  put_text(failures ? "self test failed\n" : "self test passed\n");

  do {
    put_text("> ");
  } while (get_line(line, sizeof line) && run_command(line));
  put_char('\n');
  flush_output();
  return failures;
}
