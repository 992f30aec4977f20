// lumoscript-batch: a Script run unattended, for servers. No window, no display.

#include <cstdio>

#include "cli/command_line.h"
#include "cli/unattended.h"

int main(int argc, char** argv) {
    using namespace lumo::cli;
    const CommandLine line = ParseCommandLine({argv + 1, argv + argc}, Program::Batch);
    if (line.stop) {
        std::fputs(line.text.c_str(), line.exitCode == 0 ? stdout : stderr);
        return line.exitCode;
    }
    return RunUnattended(line, Program::Batch);
}
