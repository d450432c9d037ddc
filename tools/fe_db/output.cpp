#include "output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "canonical_text.h"

namespace fe_db_tools {
namespace {

[[noreturn]] void fail(int error) {
  if (error == EPIPE) throw OutputClosed();
  throw std::runtime_error(std::string("standard output: cannot write: ") + std::strerror(error));
}

}  // namespace

void print(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) fail(errno);
}

void finishOutput() {
  if (std::fflush(stdout) != 0) fail(errno);
}

void report(std::string_view message) {
  // One write, so that the lines of several processes do not mix.
  const std::string line = "fe_db: " + printable(message) + '\n';
  std::fputs(line.c_str(), stderr);
}

}  // namespace fe_db_tools
