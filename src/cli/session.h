#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "app/form/frm_main.h"
#include "app/launch/program.h"
#include "app/launch/simulated_board.h"
#include "app/launch/wave_file.h"
#include "app/work/device_catalogue.h"
#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/console_dialogs.h"
#include "cli/console_view.h"
#include "devices/families.h"
#include "hardware/ports/signal_stop.h"

namespace kestrel::cli {

/// Says it on standard error; nothing for an empty text.
void printMessage(const std::string& text);

/// One run at the form: start-up, the options, the command, saving, shut-down. Every step is the
/// press of the control that a person would press; what was not asked for presses nothing.
class Session {
 public:
  struct Parts {
    form::frmMain& form;
    ConsoleView& view;
    ConsoleDialogs& dialogs;
    const ports::SignalStop& signals;
    const StopSwitch& stop;             ///< that the signals throw
    launch::SimulatedBoard* simulated;  ///< nullptr with real ports
    launch::WaveFile* waves;            ///< nullptr without a wave file
    launch::TraceFile& trace;
    const work::DeviceCatalogue::Device* device;  ///< of -d; nullptr if not given
    const Arguments& arguments;
    std::ostream& out;
    JsonReport* json = nullptr;  ///< of --json
  };

  explicit Session(const Parts& parts) : p_(parts) {}

  /// Runs it all and returns the exit status. A step that cannot be done ends the run before its
  /// end, but never without shutting down. Reasons are written to standard error. Throws FileError,
  /// before anything is begun, for a file that cannot be written.
  int run(const std::vector<const Command*>& commands);

  // For the commands.

  [[nodiscard]] const Arguments& arguments() const { return p_.arguments; }
  [[nodiscard]] Controls& controls() const { return p_.form.controls(); }
  [[nodiscard]] const ProgrammerState& state() const { return p_.form.state(); }
  [[nodiscard]] ConsoleView& view() { return p_.view; }
  [[nodiscard]] form::frmMain& form() { return p_.form; }

  /// Where results go that are for a person.
  [[nodiscard]] std::ostream& out() { return p_.out; }

  /// nullptr without --json.
  [[nodiscard]] JsonReport* json() { return p_.json; }

  /// Of the selected device; empty if none is.
  [[nodiscard]] std::string deviceName() const;

  /// For a series: what follows is not asked any more; a line from the person; the next chip into a
  /// simulated socket.
  void answerYes() { p_.dialogs.answerYes(); }
  [[nodiscard]] std::optional<std::string> lineFromPerson();
  void changeSimulatedChip(std::size_t number);

  /// Writes its file now, as a chip on the table keeps what it holds whatever ends the program.
  void keepSimulatedChip();

  /// What the next dialog is answered with.
  void answerWith(std::string text) { p_.dialogs.answerWith(std::move(text)); }

  /// Presses a control. Throws EarlyEnd when it is disabled, with that reason, and when what it ran
  /// did not end well.
  void press(Button& button, const std::string& whyDisabled);

  /// Presses it and gives back how that ended. Throws EarlyEnd when it is disabled.
  [[nodiscard]] CommandResult tryToPress(Button& button, const std::string& whyDisabled);

  /// Asks before something is lost. Throws EarlyEnd unless the answer is OK.
  void confirm(const std::string& question);

  /// Throws EarlyEnd unless the command ended well and no signal asked for the end.
  void endUnlessDone(const CommandResult& result);

  /// Uses a control other than a button. Throws EarlyEnd when that did not end well.
  void use(const std::function<void()>& event);

  /// What the selected device has to say; empty with none selected.
  [[nodiscard]] std::string remark(std::string_view (*find)(const devices::Family&));

  /// Why a command or an option cannot be had: no device is selected, or else the given reason.
  [[nodiscard]] std::string unless(const std::string& what, const std::string& reason) const;

 private:
  int attempt(const std::vector<const Command*>& commands);
  void runOne(const Command& command);
  int ended(const Command& first, int status, const std::string& reason);
  void reportResult(const Command& command, int status,
                    std::chrono::steady_clock::time_point begin);
  void startUp(const std::vector<const Command*>& commands);
  void keepChip();
  void tryFiles(const std::vector<const Command*>& commands) const;
  void applyOptions();
  void checkBoard() const;
  void checkMemory(const Command& command) const;
  void openCodeFile(const std::string& name);
  void importCodeFile(const std::string& name);
  void hintForRaw(const std::string& name) const;
  void printLengths(const std::string& name) const;
  [[nodiscard]] std::string shortFileText(const std::string& rest) const;
  void saveBuffer(const std::string& name);
  void exportBuffer(const std::string& name);
  void shutDown(int& status);
  void printFindings() const;
  void warnOfVoltage(int& status) const;
  static void finish(int& status, const char* option, const std::function<void()>& steps);

  Parts p_;
  CommandResult last_;  ///< of the command that runs: how its last press ended
  bool isReported_ = false;
};

}  // namespace kestrel::cli
