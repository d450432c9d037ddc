#include "removed_on_signal.h"

#include <signal.h>
#include <unistd.h>

#include <utility>

namespace fe_db_tools {
namespace {

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};

std::vector<std::string> removed;

void removeAndEnd(int signal) {
  for (const std::string& name : removed) {
    if (unlink(name.c_str()) != 0) rmdir(name.c_str());
  }
  raise(signal);
}

}  // namespace

RemovedOnSignal::RemovedOnSignal(std::vector<std::string> names) {
  removed = std::move(names);
  struct sigaction action {};
  action.sa_handler = removeAndEnd;
  action.sa_flags = static_cast<int>(SA_RESETHAND);  // the second one ends the program
  for (const int signal : kEndingSignals) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
}

RemovedOnSignal::~RemovedOnSignal() {
  for (const int signal : kEndingSignals) {
    struct sigaction current {};
    sigaction(signal, nullptr, &current);
    if (current.sa_handler == removeAndEnd) ::signal(signal, SIG_DFL);
  }
}

}  // namespace fe_db_tools
