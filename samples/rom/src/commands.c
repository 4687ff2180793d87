#include "commands.h"

#include "crc32.h"
#include "memory.h"

typedef struct {
  const char* name;
  const char* help;
  void (*run)(word address, word size);
} command;

static void put_range(const char* name, const byte* from, const byte* to) {
  put_text(name);
  put_hex((word)from, 8);
  put_text(" to ");
  put_hex((word)to, 8);
  put_text(", ");
  put_number((word)(to - from));
  put_text(" bytes\n");
}

static void show_map(word address, word size) {
  (void)address, (void)size;
  put_range("ROM        ", rom_start, rom_end);
  put_range("variables  ", data_start, bss_end);
  put_range("  copied   ", data_start, data_end);
  put_range("  cleared  ", bss_start, bss_end);
  put_range("stack      ", bss_end, stack_top);
}

static void show_sum(word address, word size) {
  put_text("CRC ");
  put_hex(crc32((const byte*)address, size), 8);
  put_char('\n');
}

static void put_row(const byte* bytes, word size) {
  word i;
  put_hex((word)bytes, 8);
  put_char(':');
  for (i = 0; i < size; ++i) {
    put_char(' ');
    put_hex(bytes[i], 2);
  }
  put_char('\n');
}

static void dump(word address, word size) {
  while (size > 0) {
    word row = size < 16 ? size : 16;
    put_row((const byte*)address, row);
    address += row;
    size -= row;
  }
}

static void show_help(word address, word size);

/* const: the table and the texts stay in the ROM. */
static const command commands[] = {
    {"help", "this list", show_help},
    {"map", "where everything lies", show_map},
    {"crc", "ADDRESS SIZE: the check sum of memory", show_sum},
    {"dump", "ADDRESS SIZE: the bytes of memory", dump},
    {"quit", "the end", 0},
};
enum { COMMANDS = sizeof commands / sizeof *commands };

static void show_help(word address, word size) {
  int i;
  (void)address, (void)size;
  for (i = 0; i < COMMANDS; ++i) {
    put_text(commands[i].name);
    put_char('\t');
    put_text(commands[i].help);
    put_char('\n');
  }
}

/* Cuts the next word off a line. */
static char* next_word(char** line) {
  char* word_start;
  while (**line == ' ') ++*line;
  word_start = *line;
  while (**line && **line != ' ') ++*line;
  if (**line) *(*line)++ = 0;
  return word_start;
}

static word hex_value(const char* text) {
  word value = 0;
  for (; *text; ++text) {
    char c = (char)(*text | 32);
    if (c >= '0' && c <= '9') value = value << 4 | (word)(c - '0');
    if (c >= 'a' && c <= 'f') value = value << 4 | (word)(c - 'a' + 10);
  }
  return value;
}

static int same(const char* a, const char* b) {
  while (*a && *a == *b) ++a, ++b;
  return *a == *b;
}

int run_command(char* line) {
  const char* name = next_word(&line);
  word address = hex_value(next_word(&line));
  word size = hex_value(next_word(&line));
  int i;
  for (i = 0; i < COMMANDS; ++i) {
    if (!same(name, commands[i].name)) continue;
    if (commands[i].run) commands[i].run(address, size);
    return commands[i].run != 0;
  }
  if (*name) put_text("no such command; \"help\" lists them\n");
  return 1;
}
