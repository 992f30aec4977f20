#pragma once

// System calls that fail when a test says so. A program that uses this has its own definitions of
// these calls, which go on to the system's where no failure is wanted.

namespace lumo::test {

enum class Call { Rename, Fsync, Access };

/// While it lives, the call fails with that error number for this thread.
class ScopedFailure {
  public:
    ScopedFailure(Call call, int errorNumber);
    ~ScopedFailure();
    ScopedFailure(const ScopedFailure&) = delete;
    ScopedFailure& operator=(const ScopedFailure&) = delete;

  private:
    Call call_;
};

}  // namespace lumo::test
