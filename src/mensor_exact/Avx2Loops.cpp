// Avx2Loops.cpp: see LoopBodies.h. CMakeLists.txt says what the compiler may use here.
#define MENSOR_LOOPS Avx2Loops
#define MENSOR_LOOPS_NAME "AVX2"
#include "mensor_exact/LoopBodies.h"
