/* The places that monitor.lk names. Their addresses count, they have no contents of their own. */
#ifndef MEMORY_H
#define MEMORY_H

#include "console.h"

extern const byte rom_start[], rom_end[];
extern const byte data_in_rom[], data_start[], data_end[];
extern const byte bss_start[], bss_end[], stack_top[];

#endif
