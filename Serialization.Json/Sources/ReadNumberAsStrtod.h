#pragma once

/* Comes before the first line of cJSON's source. The header goes first: where strtod is an inline function there, the
   name must not change before that is defined. */
#include "ReadNumber.h"

#include <stdlib.h>

#define strtod NfxReadNumber
