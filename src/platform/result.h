#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace lumo::platform {

/// Why something failed, as one line that a user can read.
struct Error {
    std::string message;
    int number = 0;  // of the system (errno), where it is one
};

/// The value of an operation, or the reason why there is none.
template <class T>
class [[nodiscard]] Result {
  public:
    Result(T value) : state_(std::move(value)) {}      // NOLINT(google-explicit-constructor)
    Result(Error error) : state_(std::move(error)) {}  // NOLINT(google-explicit-constructor)

    explicit operator bool() const { return std::holds_alternative<T>(state_); }

    T& operator*() & { return Get(); }
    const T& operator*() const& { return std::get<T>(state_); }
    T&& operator*() && { return std::move(Get()); }
    T* operator->() { return &Get(); }
    const T* operator->() const { return &std::get<T>(state_); }

    /// The reason; only of a result that holds no value.
    const std::string& Message() const { return Reason().message; }
    const Error& Reason() const {
        assert(!*this);
        return std::get<Error>(state_);
    }

  private:
    T& Get() {
        assert(*this);
        return std::get<T>(state_);
    }

    std::variant<T, Error> state_;
};

/// The value of an operation that only succeeds or fails.
struct Done {};
using Status = Result<Done>;

}  // namespace lumo::platform
