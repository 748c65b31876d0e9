// Uses nothing of mensor, but is linked with it. Loading the library must be silent; and where the program
// forks, its child must be able to exit.
//
// usage: merely_links [fork]
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

int main(int count, char**) {
    // Proof that the library was loaded: this only finds what already is.
    if (dlopen("libmensor.so.1", RTLD_NOW | RTLD_NOLOAD) == nullptr) {
        return 1;
    }
    if (count == 1) {
        return 0;
    }
    constexpr int Status = 7;
    const pid_t child = fork();
    if (child == 0) {
        std::exit(Status);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == Status ? 0 : 1;
}
