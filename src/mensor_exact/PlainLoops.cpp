// PlainLoops.cpp: LoopBodies.h compiled for any processor. CMakeLists.txt has the options of the
// compiler.
#define MENSOR_LOOPS PlainLoops
#define MENSOR_LOOPS_NAME "plain"
#include "mensor_exact/LoopBodies.h"
