// load_udunits2.cpp: loads UDUNITS-2 and reads its database, so that all units are in memory as in
// mensor.
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
