// Compiled with the models layer's include path: a cold header is out of reach.
#include "models/roomori.h"
#include "cold/coldlaw.h"
