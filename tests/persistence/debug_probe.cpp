#include <stdexcept>
#include <thread>

#include "persistence/debug.h"

/// Traces of every shape; the test reads what arrives on standard error.
using persistence::Debug;
using persistence::DebugTimer;

namespace {

void leaveByException() {
  const Debug scope(2, "thrower");
  throw std::runtime_error("out");
}

}  // namespace

int main() {
  const Debug outer(1, "outer");
  {
    const Debug inner(2, "inner", "id=%d name=%s\n", 7, "x");
    inner.print("with newline %lu\n", 5UL);
    inner.print("without newline");
    const Debug tooDeep(3, "level three");
    tooDeep.print("not shown at two");
  }
  try {
    leaveByException();
  } catch (const std::runtime_error&) {
  }
  outer.print("back outside");
  DebugTimer timer(2, "timer");
  timer.reset();
  timer.display("saved %lu rows", 9UL);
  std::thread([] { const Debug scope(1, "in a thread"); }).join();
  return outer.canDebug() ? 10 : 0;
}
