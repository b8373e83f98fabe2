/* Loaded in place of the library: prints the capabilities that it finds, and ends the program. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

__attribute__((constructor)) static void tell(void)
{
    char line[256];
    FILE* status = fopen("/proc/self/status", "r");
    while (status != NULL && fgets(line, sizeof line, status) != NULL)
    {
        if (strncmp(line, "CapPrm:", 7) == 0)
        {
            fputs(line, stdout);
        }
    }
    fflush(stdout);
    _Exit(0);
}
