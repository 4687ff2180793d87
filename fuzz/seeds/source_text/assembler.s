	.include "m.inc" # it isn't
main:
/* #include "x" */
#define A \
  "b"
