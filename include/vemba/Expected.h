// A value or an error, for operations that fail with a typed error instead of throwing (the
// library's decoders, and vemba::checkout::fromJson for hosts). Value type, copyable when T and E
// are; reading the alternative it does not hold (value() of a failure, error() of a value) throws
// std::bad_variant_access.
#pragma once

#include <utility>
#include <variant>

namespace vemba {

template <typename E>
struct Unexpected {
  E error;
};

template <typename E>
Unexpected(E) -> Unexpected<E>;

template <typename T, typename E>
class Expected {
 public:
  Expected(T value) : storage_(std::in_place_index<0>, std::move(value)) {}  // NOLINT
  Expected(Unexpected<E> failure)                                            // NOLINT
      : storage_(std::in_place_index<1>, std::move(failure.error)) {}

  bool hasValue() const { return storage_.index() == 0; }
  explicit operator bool() const { return hasValue(); }

  T& value() & { return std::get<0>(storage_); }
  const T& value() const& { return std::get<0>(storage_); }
  T&& value() && { return std::get<0>(std::move(storage_)); }
  const E& error() const { return std::get<1>(storage_); }

  T* operator->() { return &value(); }
  const T* operator->() const { return &value(); }
  T& operator*() & { return value(); }
  const T& operator*() const& { return value(); }

 private:
  std::variant<T, E> storage_;
};

}  // namespace vemba
