#include "tessal/deviceinfo.h"
