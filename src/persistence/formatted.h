#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>

namespace persistence {

/// What printf would print.
inline std::string formatted(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::string message(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  std::vsnprintf(message.data(), message.size() + 1, format, arguments);
  return message;
}

}  // namespace persistence
