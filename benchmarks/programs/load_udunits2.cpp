// load_udunits2.cpp: brings UDUNITS-2 to where mensor is once loaded: all units in memory.
#include <udunits2.h>

#include "programs/memory.h"

int main(int argc, char**) {
    ut_set_error_message_handler(ut_ignore);
    ut_system* const system = ut_read_xml(nullptr);
    if (argc > 1) {
        printMemory();
    }
    return system ? 0 : 1;
}
