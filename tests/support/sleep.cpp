#include "support/scriptedsdk.h"

/// Takes the place of the C library's: written down, never slept.
extern "C" unsigned int sleep(unsigned int seconds)
{
    sdk::call("sleep", {QString::number(seconds)});
    return 0;
}
