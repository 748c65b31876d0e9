// statics.cpp: see main.cpp.
#include <cstdlib>

#include "use.h"

namespace {

struct CStatic {
    CStatic() {
        std::atexit(useEverything);
        if (isFirst("before_main")) {
            useEverything();
        }
    }
    ~CStatic() { useEverything(); }
};

const CStatic theStatic;

}  // namespace
