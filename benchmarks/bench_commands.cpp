// Cost of running a command compared with the least that any program needs, in a small process and
// in a large one.
#include "Comparison.h"
#include "internal/CommandRunner_p.h"

#include <benchmark/benchmark.h>

#include <array>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

/** The least that is needed to run a program and to read its output. */
QByteArray spawnAndRead(const char *program, const char *argument)
{
    std::array<int, 2> ends {};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    const std::array<char *, 3> words {const_cast<char *>(program), const_cast<char *>(argument)};
    pid_t id = 0;
    posix_spawnp(&id, program, &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    QByteArray output;
    std::array<char, 4096> part {};
    for (ssize_t size = 0; (size = ::read(ends[0], part.data(), part.size())) > 0;)
        output.append(part.data(), int(size));
    ::close(ends[0]);
    ::waitpid(id, nullptr, 0);
    return output;
}

/** Starting a command must cost the same in a small process and in an interface with its pictures.
 */
void commands(Comparison &comparison)
{
    const auto job = [] { benchmark::DoNotOptimize(Internal::runDirect("echo a", {3000, 5000})); };
    const auto floor = [] { benchmark::DoNotOptimize(spawnAndRead("echo", "a")); };
    // The processor time of this process and of its children, which depends little on other load.
    const auto time = Comparison::ProcessorTimeWithChildren;
    comparison.compare({"a command and its output", 1.1, time}, job, floor);
    const std::vector<char> pictures(std::size_t {200} << 20U, 'p');
    benchmark::DoNotOptimize(pictures.data());
    comparison.compare({"the same, 200 MiB touched", 1.1, time}, job, floor);
    comparison.compare({"the same, time that passes", 1.1, Comparison::WallTime}, job, floor);
}

} // namespace

int main(int argc, char *argv[])
{
    return benchmarkMain(argc, argv, commands);
}
