// Stands in for a compiler in measurements: does what a build manager sees of one and nothing else.
//
//   stand-in [-c] SOURCE -oOUTPUT [-MD] [-MF FILE] [-MT TARGET] [other options]
//       makes OUTPUT, and for -MF writes a dependency rule of the source's #include "..." lines
//   stand-in --lines COUNT
//       prints COUNT lines of 80 bytes, line end included

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static void print_lines(long count) {
  static char block[80 * 512];
  for (size_t i = 0; i < sizeof block; ++i) block[i] = i % 80 == 79 ? '\n' : (char)('a' + i % 26);
  while (count > 0) {
    const size_t lines = count < 512 ? (size_t)count : 512;
    size_t left = lines * 80;
    const char* at = block;
    while (left > 0) {
      const ssize_t written = write(1, at, left);
      if (written < 0) exit(1);
      at += written;
      left -= (size_t)written;
    }
    count -= (long)lines;
  }
}

// Writes "TARGET: SOURCE header..." with one #include line of the source for each header.
static void write_rule(const char* path, const char* target, const char* source) {
  FILE* in = fopen(source, "r");
  FILE* out = fopen(path, "w");
  if (!in || !out) exit(1);
  fprintf(out, "%s: %s", target, source);
  char line[4096];
  while (fgets(line, sizeof line, in)) {
    if (strncmp(line, "#include \"", 10) != 0) continue;
    char* end = strchr(line + 10, '"');
    if (!end) continue;
    *end = 0;
    fprintf(out, " \\\n %s", line + 10);
  }
  fputc('\n', out);
  fclose(in);
  if (fclose(out) != 0) exit(1);
}

int main(int argc, char** argv) {
  const char* source = 0;
  const char* output = 0;
  const char* rule = 0;
  const char* target = "x";
  if (argc == 3 && strcmp(argv[1], "--lines") == 0) {
    print_lines(atol(argv[2]));
    return 0;
  }
  for (int i = 1; i < argc; ++i) {
    const char* arg = argv[i];
    if (strncmp(arg, "-o", 2) == 0) {
      output = arg[2] ? arg + 2 : argv[++i];
    } else if (strcmp(arg, "-MF") == 0 && i + 1 < argc) {
      rule = argv[++i];
    } else if (strcmp(arg, "-MT") == 0 && i + 1 < argc) {
      target = argv[++i];
    } else if (arg[0] != '-') {
      source = arg;
    }
  }
  if (!source || !output) {
    fputs("stand-in: needs a source and -oOUTPUT\n", stderr);
    return 2;
  }
  const int file = open(output, O_WRONLY | O_CREAT | O_TRUNC, 0666);
  if (file < 0) {
    perror(output);
    return 1;
  }
  close(file);
  if (rule) write_rule(rule, target, source);
  return 0;
}
