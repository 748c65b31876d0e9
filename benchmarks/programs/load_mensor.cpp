// load_mensor.cpp: links mensor and leaves it alone.
#include "programs/memory.h"

int main(int argc, char**) {
    if (argc > 1) {
        printMemory();
    }
    return 0;
}
