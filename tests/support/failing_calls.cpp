#include "support/failing_calls.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>

namespace lumo::test {
namespace {

thread_local std::array<int, 3> failures{};

int& FailureOf(Call call) {
    return failures[static_cast<std::size_t>(call)];
}

/// True, with errno set, if the call is to fail.
bool Fails(Call call) {
    if (FailureOf(call) == 0) return false;
    errno = FailureOf(call);
    return true;
}

}  // namespace

ScopedFailure::ScopedFailure(Call call, int errorNumber) : call_(call) {
    FailureOf(call) = errorNumber;
}

ScopedFailure::~ScopedFailure() {
    FailureOf(call_) = 0;
}

}  // namespace lumo::test

using lumo::test::Call;
using lumo::test::Fails;

extern "C" {

int rename(const char* from, const char* to) noexcept {
    if (Fails(Call::Rename)) return -1;
    return renameat(AT_FDCWD, from, AT_FDCWD, to);
}

int fsync(int descriptor) {
    if (Fails(Call::Fsync)) return -1;
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

// The flags are passed over: tests run with one identity, so the effective user is the real one.
int faccessat(int folder, const char* path, int mode, int /*flags*/) noexcept {
    if (Fails(Call::Access)) return -1;
    return static_cast<int>(syscall(SYS_faccessat, folder, path, mode));
}

}  // extern "C"
