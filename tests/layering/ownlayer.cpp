// Compiled with the models layer's include path: its own layer and the ground.
#include "base/textfile.h"
#include "models/roomori.h"
