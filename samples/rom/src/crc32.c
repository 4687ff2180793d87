#include "crc32.h"

/* A board reads its RAM faster than its ROM, so the start-up code takes this there with the variables. */
#define IN_RAM __attribute__((section(".data")))

/* What four bits do to the sum. */
static word table[16] IN_RAM = {
    0x00000000, 0x1DB71064, 0x3B6E20C8, 0x26D930AC, 0x76DC4190, 0x6B6B51F4, 0x4DB26158, 0x5005713C,
    0xEDB88320, 0xF00F9344, 0xD6D6A3E8, 0xCB61B38C, 0x9B64C2B0, 0x86D3D2D4, 0xA00AE278, 0xBDBDF21C,
};

word crc32(const byte* bytes, word size) {
  word sum = ~0u;
  while (size-- > 0) {
    sum ^= *bytes++;
    sum = sum >> 4 ^ table[sum & 15];
    sum = sum >> 4 ^ table[sum & 15];
  }
  return ~sum;
}
