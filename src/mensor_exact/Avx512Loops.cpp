// Avx512Loops.cpp: LoopBodies.h compiled for AVX-512. CMakeLists.txt has the options of the compiler.
#define MENSOR_LOOPS Avx512Loops
#define MENSOR_LOOPS_NAME "AVX-512"
#include "mensor_exact/LoopBodies.h"
