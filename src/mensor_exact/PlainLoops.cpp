// PlainLoops.cpp: see LoopBodies.h. CMakeLists.txt says what the compiler may use here.
#define MENSOR_LOOPS PlainLoops
#define MENSOR_LOOPS_NAME "plain"
#include "mensor_exact/LoopBodies.h"
