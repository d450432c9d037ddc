#include "persistence/debug.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "formatted.h"
#include "persistence/escaped_text.h"

namespace persistence {

namespace {

thread_local int depth = 0;

int highestLevelShown() {
  const char* level = std::getenv("FE_DB_DEBUG");
  return level != nullptr ? std::atoi(level) : 0;
}

/// A line of this thread's depth, written at once so that lines of other threads do not mix in.
void writeLine(std::string_view head, std::string_view message) {
  std::string line(static_cast<std::size_t>(depth) * 2, ' ');
  if (message.ends_with('\n')) message.remove_suffix(1);
  line.append(head).append(escaped(message)).push_back('\n');
  std::fputs(line.c_str(), stderr);
}

std::string scopeHead(int level, std::string_view name) {
  std::string head = "[";
  head.append(std::to_string(level)).append("] ").append(name);
  return head;
}

}  // namespace

const int Debug::shownLevel = highestLevelShown();

void Debug::open() {
  writeLine(scopeHead(level, name), "");
  ++depth;
}

void Debug::openWith(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  writeLine(scopeHead(level, name).append(": "), formatted(format, arguments));
  va_end(arguments);
  ++depth;
}

void Debug::close() { --depth; }

void Debug::write(const char* format, ...) const {
  std::va_list arguments;
  va_start(arguments, format);
  writeLine(scopeHead(level, name).append(": "), formatted(format, arguments));
  va_end(arguments);
}

DebugTimer::DebugTimer(int level, const std::string& name)
    : level(level), name(name), active(level <= Debug::shownLevel) {
  reset();
}

void DebugTimer::reset() {
  if (active) start = std::chrono::steady_clock::now();
}

void DebugTimer::display(const char* format, ...) {
  if (!active) return;
  const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
  char time[32];
  std::snprintf(time, sizeof time, " (%.3f ms): ", spent.count());
  std::va_list arguments;
  va_start(arguments, format);
  writeLine(scopeHead(level, name).append(time), formatted(format, arguments));
  va_end(arguments);
}

}  // namespace persistence
