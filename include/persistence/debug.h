#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "persistence/export.h"

namespace persistence {

/// A scoped trace: one line on standard error when the scope opens and one for each print, with
/// level and name, indented by the depth of this thread's open scopes. The name has to outlive it.
///
/// The environment variable FE_DB_DEBUG holds the highest level shown (unset or 0: none); it is
/// read once, when the library is loaded. A level that is off costs one inline compare: the
/// templates are in front because a C-variadic function is never inlined.
///
/// Formats are printf's; a newline at their end is optional.
class SHARED_PERSISTENCE_EXPORT Debug {
 public:
  Debug(int level, std::string_view name) : level(level), name(name), active(level <= shownLevel) {
    if (active) open();
  }
  template <class... Args>
  Debug(int level, std::string_view name, const char* format, Args... args)
      : level(level), name(name), active(level <= shownLevel) {
    if (active) openWith(format, args...);
  }
  ~Debug() {
    if (active) close();
  }
  Debug(const Debug&) = delete;
  Debug& operator=(const Debug&) = delete;

  template <class... Args>
  void print(const char* format, Args... args) const {
    if (active) write(format, args...);
  }
  bool canDebug() const { return active; }

 private:
  void open();
  void openWith(const char* format, ...);
  void close();
  void write(const char* format, ...) const;

  friend class DebugTimer;

  static const int shownLevel;
  const int level;
  const std::string_view name;
  const bool active;
};

/// A scoped stopwatch under the same switch and levels as Debug. No clock is read while off.
class SHARED_PERSISTENCE_EXPORT DebugTimer {
 public:
  DebugTimer(int level, const std::string& name);
  ~DebugTimer() = default;
  DebugTimer(const DebugTimer&) = delete;
  DebugTimer& operator=(const DebugTimer&) = delete;

  void reset();
  /// Prints the time since the last reset and the message.
  void display(const char* format, ...);

 private:
  int level;
  std::string name;
  bool active;
  std::chrono::steady_clock::time_point start;
};

}  // namespace persistence
