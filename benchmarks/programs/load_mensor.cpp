// load_mensor.cpp: loads mensor and does not use it.
#include "programs/memory.h"

int main(int argc, char**) {
    if (argc > 1) {
        printMemory();
    }
    return 0;
}
