#pragma once

#include "platform/stop_switch.h"

namespace kestrel::ports {

/// Lets SIGINT, SIGTERM and SIGHUP end the running command, and then the program in good order.
///
/// The first of them throws the stop switch, so that the command ends at its next port access and
/// the board goes to its idle state; the program then sees signal() and shuts down. A second one
/// ends the program at once, with the guard left to switch off. A hang-up or SIGINT that was
/// ignored when the program started (nohup, a script's background) stays so. SIGTSTP, SIGTTOU and
/// SIGTTIN are ignored meanwhile: a program that the terminal stops would leave a programming
/// voltage on for as long as it sleeps.
///
/// One at a time in a process, since a signal handler has no argument.
class SignalStop {
 public:
  /// The switch outlives this.
  explicit SignalStop(StopSwitch& stop);
  ~SignalStop();
  SignalStop(const SignalStop&) = delete;
  SignalStop& operator=(const SignalStop&) = delete;

  /// The signal that asked for the end of the program; 0 while none did.
  [[nodiscard]] int signal() const;
  [[nodiscard]] bool isEndRequested() const { return signal() != 0; }

  /// The exit status that tells it: 128 and the signal (130 for Ctrl-C); 0 while none did.
  [[nodiscard]] int exitStatus() const { return isEndRequested() ? 128 + signal() : 0; }

  /// Becomes readable with the first signal: for an event loop, or a wait for the terminal. It is
  /// never to be read.
  [[nodiscard]] int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

/// From now on a crash (segmentation fault, abort, Ctrl-\ and their like) has the guards switch
/// off before it takes its course: the guard would else wait until a core file is written. Once,
/// on the main thread, whose stack overflow it survives too.
void switchOffOnCrash();

/// Opens the null device for what is missing of standard input, output and error: else a port would
/// be opened in its place, and the log be written to the board. Before any other file is opened.
void openMissingStandardFiles();

}  // namespace kestrel::ports
