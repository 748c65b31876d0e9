// load_nothing.cpp: loads no library.
#include "programs/memory.h"

int main(int argc, char**) {
    if (argc > 1) {
        printMemory();
    }
    return 0;
}
