// A value or the reason why there is none. Exceptions cross no seam of this project; operations
// that can fail for reasons outside the program (files, input) return one of these.
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace platform {

// A message fit for the user: what failed, where, and what to do about it. UTF-8, one line.
struct Error {
  std::string message;
};

template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : value_(std::move(value)) {}      // NOLINT: a value is a result
  Result(Error error) : error_(std::move(error)) {}  // NOLINT: so is an error

  explicit operator bool() const { return value_.has_value(); }
  T& operator*() { return *value_; }
  const T& operator*() const { return *value_; }
  T* operator->() { return &*value_; }
  const T* operator->() const { return &*value_; }
  const std::string& error() const { return error_.message; }

 private:
  std::optional<T> value_;
  Error error_;
};

template <>
class [[nodiscard]] Result<void> {
 public:
  Result() = default;
  Result(Error error) : error_(std::move(error)) {}  // NOLINT
  explicit operator bool() const { return !error_.has_value(); }
  const std::string& error() const { return error_->message; }

 private:
  std::optional<Error> error_;
};

}  // namespace platform
