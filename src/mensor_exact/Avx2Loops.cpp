// Avx2Loops.cpp: LoopBodies.h compiled for AVX2. CMakeLists.txt has the options of the compiler.
#define MENSOR_LOOPS Avx2Loops
#define MENSOR_LOOPS_NAME "AVX2"
#include "mensor_exact/LoopBodies.h"
