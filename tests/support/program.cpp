#include "support/program.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "support/temp_folder.h"

namespace lumo::test {
namespace {

/// The output goes to files, so that no pipe can fill up.
void Redirect(const std::string& path, int target) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (file < 0 || dup2(file, target) < 0) _exit(126);
    close(file);
}

}  // namespace

ProgramResult RunProgram(const std::vector<std::string>& arguments) {
    return RunProgram(arguments, [](int) {});
}

ProgramResult RunProgram(const std::vector<std::string>& arguments,
                         const std::function<void(int process)>& meanwhile) {
    const TempFolder folder;
    const std::string outPath = folder / "out", errPath = folder / "err";
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) std::abort();
    if (child == 0) {
        const int null = open("/dev/null", O_RDONLY);
        dup2(null, STDIN_FILENO);
        Redirect(outPath, STDOUT_FILENO);
        Redirect(errPath, STDERR_FILENO);
        execv(argv[0], argv.data());
        _exit(127);
    }
    meanwhile(child);
    int status = 0;
    rusage usage{};
    while (wait4(child, &status, 0, &usage) < 0) {
    }
    ProgramResult result;
    result.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.peakKilobytes = usage.ru_maxrss;
    result.out = FileText(outPath);
    result.err = FileText(errPath);
    return result;
}

bool WaitForProgram(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace lumo::test
