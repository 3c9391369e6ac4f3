#include <csignal>
#include <iostream>

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/standard_output.h"
#include "hardware/ports/signal_stop.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace {

int refused(const std::exception& error, int status) {
  std::cerr << "kestrel-cli: " << kestrel::shownName(error.what()) << '\n';
  return status;
}

int run(int argc, char** argv) {
  kestrel::StopSwitch stop;
  kestrel::cli::StandardOutput output(stop);
  const auto arguments = kestrel::cli::readArguments(argc, argv);
  const int status = arguments ? kestrel::cli::runCommand(*arguments, stop) : kestrel::cli::kDone;
  try {
    output.finish();
  } catch (const kestrel::FileError& error) {
    const int lost = refused(error, kestrel::cli::kBadUsage);
    return status == kestrel::cli::kDone ? lost : status;
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  kestrel::ports::openMissingStandardFiles();
  // A reader of the log that goes away must not end the program with a voltage on.
  std::signal(SIGPIPE, SIG_IGN);
  // Nor must a file that reaches the limit of its size (ulimit -f): that is an error of the write.
  std::signal(SIGXFSZ, SIG_IGN);
  kestrel::ports::switchOffOnCrash();
  try {
    return run(argc, argv);
  } catch (const kestrel::launch::UsageError& error) {
    return refused(error, kestrel::cli::kBadUsage);
  } catch (const kestrel::FileError& error) {
    return refused(error, kestrel::cli::kBadUsage);
  } catch (const std::exception& error) {
    return refused(error, kestrel::cli::kFailed);
  }
}
