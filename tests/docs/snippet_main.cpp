// snippet_main.cpp: runs one snippet of a page. The argument is its line.
#include <cstdlib>

#include "Snippet.h"

int main(int argc, char** argv) {
    const int line = argc == 2 ? std::atoi(argv[1]) : -1;
    for (const mensor_docs::Snippet* snippet = mensor_docs::SNIPPETS; snippet->Run; ++snippet) {
        if (snippet->Line == line) {
            snippet->Run();
            return mensor_docs::failures == 0 ? 0 : 1;
        }
    }
    std::cerr << "no snippet begins at line " << line << '\n';
    return 2;
}
