#pragma once

namespace orvalesca::databases_merger {

/// A member that is no part of its object's value: a copy begins with the default, and an
/// assignment leaves it alone. With it the class needs no copy operations of its own, which would
/// have to list every other member.
template <class T>
struct NotCopied {
  NotCopied() = default;
  NotCopied(const NotCopied&) {}
  NotCopied& operator=(const NotCopied&) { return *this; }

  T value{};
};

}  // namespace orvalesca::databases_merger
