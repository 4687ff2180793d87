#ifndef COMMANDS_H
#define COMMANDS_H

/* Does what a line says; 0 if it ends the program. */
int run_command(char* line);

#endif
