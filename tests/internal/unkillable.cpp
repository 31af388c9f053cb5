#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <unistd.h>

/**
 * unkillable FILE: once its id is in the file, nobody gets rid of this program: SIGKILL ends it,
 * but its parent does not hear of that before its tracer does, and that one never asks.
 */
int main(int, char *argv[])
{
    const pid_t id = ::getpid();
    ::prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY);
    if (::fork() == 0) {
        ::setsid(); // no member of the group that is killed
        const std::string text = std::to_string(id) + '\n';
        const bool isTraced = ::ptrace(PTRACE_SEIZE, id, nullptr, nullptr) == 0;
        const int file = ::open(argv[1], O_WRONLY | O_CREAT, 0600);
        if (!isTraced || ::write(file, text.data(), text.size()) < 0)
            std::perror("unkillable");
    }
    for (;;)
        ::pause();
}
