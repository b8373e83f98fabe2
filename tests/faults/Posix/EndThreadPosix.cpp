#include "EndThread.h"

#include <pthread.h>

void Tests::EndThread()
{
    pthread_exit(nullptr);
}
