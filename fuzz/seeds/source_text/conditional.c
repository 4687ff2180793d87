#include "a.h"
# include <b/c.h> // d
#ifdef X
int main(int n, char **v) { return '"'; }
#endif
