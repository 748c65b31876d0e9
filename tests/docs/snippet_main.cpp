// snippet_main.cpp: runs one snippet of the pages. The arguments are the page and the line of the snippet.
#include <cstdlib>
#include <string>

#include "Snippet.h"

int main(int argc, char** argv) {
    const std::string page = argc == 3 ? argv[1] : "";
    const int line = argc == 3 ? std::atoi(argv[2]) : -1;
    for (const mensor_docs::Snippet* snippet = mensor_docs::SNIPPETS; snippet->Page; ++snippet) {
        if (snippet->Page == page && snippet->Line == line) {
            snippet->Run();
            return mensor_docs::failures == 0 ? 0 : 1;
        }
    }
    std::cerr << "no snippet of the page begins at this line\n";
    return 2;
}
