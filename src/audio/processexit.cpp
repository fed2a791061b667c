#include "processexit.h"

#include <cstdio>
#include <cstdlib>

void exitProcess(int status)
{
    std::fflush(nullptr);
    std::_Exit(status);
}

void exitAtOnceOnLibraryExit()
{
    std::atexit([] { exitProcess(EXIT_FAILURE); });
}
