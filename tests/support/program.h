#pragma once

#include <csignal>
#include <functional>
#include <string>
#include <vector>

namespace lumo::test {

struct ProgramResult {
    int exitStatus = -1;  // 128 + n for an end by signal n
    std::string out, err;
    long peakKilobytes = 0;  // resident memory at its highest
};

/// Runs a program without a shell, with its standard input empty, and waits for its end.
ProgramResult RunProgram(const std::vector<std::string>& arguments);

/// Starts a program, calls `meanwhile` with its process number, then waits for its end.
ProgramResult RunProgram(const std::vector<std::string>& arguments,
                         const std::function<void(int process)>& meanwhile);

/// Waits until a program that runs has brought a condition about, for as long as the slowest
/// machine may need. Returns whether it does.
bool WaitForProgram(const std::function<bool()>& condition);

}  // namespace lumo::test
