#include "tessal/transportlayer.h"
