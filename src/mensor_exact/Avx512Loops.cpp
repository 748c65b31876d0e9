// Avx512Loops.cpp: see LoopBodies.h. CMakeLists.txt says what the compiler may use here.
#define MENSOR_LOOPS Avx512Loops
#define MENSOR_LOOPS_NAME "AVX-512"
#include "mensor_exact/LoopBodies.h"
