// merely_links.cpp: is linked with mensor and uses nothing of it. Loading the library must print
// nothing. With "fork", a forked child must be able to exit.
//
// usage: merely_links [fork]
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

int main(int count, char**) {
    // RTLD_NOLOAD finds the library only if it is already loaded.
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
