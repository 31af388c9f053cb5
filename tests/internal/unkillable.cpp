#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <unistd.h>

/**
 * unkillable FILE: writes its id into the file and then cannot be killed: after SIGKILL it stops in
 * the kernel, because its tracer wants to know of its end and never lets it go on.
 */
int main(int, char *argv[])
{
    const pid_t id = ::getpid();
    ::prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY);
    if (::fork() == 0) {
        ::setsid(); // not in the process group that is killed
        if (::fork() != 0) // no child of what is to be killed, either
            ::_exit(0);
        const std::string text = std::to_string(id) + '\n';
        const bool isTraced = ::ptrace(PTRACE_SEIZE, id, nullptr, PTRACE_O_TRACEEXIT) == 0;
        const int file = ::open(argv[1], O_WRONLY | O_CREAT, 0600);
        if (!isTraced || ::write(file, text.data(), text.size()) < 0)
            std::perror("unkillable");
    }
    for (;;)
        ::pause();
}
