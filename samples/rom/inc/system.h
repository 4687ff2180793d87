/* What the program needs from below: start/system.s. */
#ifndef SYSTEM_H
#define SYSTEM_H

int system_read(char* buffer, int size); /* how many bytes came; 0 at the end, -1 on an error */
int system_write(const char* text, int size);

#endif
