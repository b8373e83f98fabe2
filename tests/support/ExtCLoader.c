#include "support/ExtCLoader.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#if defined(_WIN32)
#include <objbase.h>
#include <windows.h>

static _Atomic(HMODULE) library; // the same one, whoever loads it

static int Open(const char* path)
{
    library = LoadLibraryA(path);
    return library != NULL;
}

static int Find(const char* name, unsigned argumentBytes, void* function)
{
    char decorated[80];
    snprintf(decorated, sizeof decorated, "_%s@%u", name, argumentBytes);
    FARPROC found = GetProcAddress(library, sizeof(void*) == 4 ? decorated : name);
    memcpy(function, &found, sizeof found);
    return found != NULL;
}

void UnloadExtC(void)
{
    FreeLibrary(library);
}

void FreeErrorMessage(char* message)
{
    CoTaskMemFree(message);
}
#else
#include <dlfcn.h>

static _Atomic(void*) library; // the same one, whoever loads it

static int Open(const char* path)
{
    library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    return library != NULL;
}

static int Find(const char* name, unsigned argumentBytes, void* function)
{
    (void)argumentBytes;
    void* found = dlsym(library, name);
    memcpy(function, &found, sizeof found);
    return found != NULL;
}

void UnloadExtC(void)
{
    dlclose(library);
}

void FreeErrorMessage(char* message)
{
    free(message);
}
#endif

#define FIND(NAME, BYTES)                                                                                              \
    if (!Find(#NAME, BYTES, &functions->NAME))                                                                         \
    {                                                                                                                  \
        fprintf(stderr, "%s: no function %s\n", path, #NAME);                                                          \
        return 0;                                                                                                      \
    }

int LoadExtC(const char* path, ExtCFunctions* functions)
{
    if (!Open(path))
    {
        fprintf(stderr, "%s: cannot be loaded\n", path);
        return 0;
    }
    EXTC_FUNCTIONS(FIND)
    return 1;
}
