#ifndef CRC32_H
#define CRC32_H

#include "console.h"

/* The check sum of Ethernet and of many file formats. */
word crc32(const byte* bytes, word size);

#endif
