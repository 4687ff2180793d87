#include "selftest.h"

#include "crc32.h"
#include "memory.h"

static word small = 0x12345678; /* goes by the global pointer */
static byte large[200];

static int check(const char* what, int holds) {
  if (!holds) {
    put_text("  failed: ");
    put_text(what);
    put_char('\n');
  }
  return !holds;
}

static int all_zero(const volatile byte* bytes, word size) {
  while (size-- > 0) {
    if (*bytes++) return 0;
  }
  return 1;
}

/* A stack grows down from its top, and there is just one. */
static int on_stack(const void* address) {
  return (const byte*)address > bss_end && (const byte*)address < stack_top;
}

int self_test(void) {
  int failures = 0;
  int local = 0;
  const volatile word* copied = &small;
  failures += check("variables with a value have it", *copied == 0x12345678);
  failures += check("variables without a value are zero", all_zero(large, sizeof large));
  failures += check("variables lie in the RAM", (const byte*)copied >= data_start && large + sizeof large <= bss_end);
  failures += check("the stack lies behind them", on_stack(&local));
  failures += check("CRC of a known text", crc32((const byte*)"123456789", 9) == 0xCBF43926);
  return failures;
}
