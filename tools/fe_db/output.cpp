#include "output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

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

}  // namespace fe_db_tools
