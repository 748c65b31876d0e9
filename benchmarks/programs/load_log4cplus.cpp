// load_log4cplus.cpp: links log4cplus and leaves it alone.
#include "programs/memory.h"

int main(int argc, char**) {
    if (argc > 1) {
        printMemory();
    }
    return 0;
}
