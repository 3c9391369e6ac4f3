#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "app/form/frm_main.h"
#include "images/serial_numbers.h"

namespace kestrel::form {

/// What became of one chip of a series.
struct SeriesChip {
  std::size_t number = 0;   ///< counted from 1
  std::string serial = {};  ///< empty: none, or the chip is bad
  CommandResult result = {};
  std::string sum = {};  ///< of the chip, four hexadecimal digits; empty when it is not good
  double seconds = 0;

  [[nodiscard]] bool isGood() const { return result.ending == Ending::Done; }
};

/// The person at the bench, who takes one chip out and puts the next one in.
class SeriesOperator {
 public:
  virtual ~SeriesOperator() = default;

  /// Waits for the next chip in the socket; false ends the series. Called with the board idle and
  /// the socket without supply.
  virtual bool isNextChipIn(std::size_t number) = 0;

  /// What a chip that can be written again holds is to be kept before it is written. `keep` puts it
  /// somewhere; the chip is left as it is when that does not end well.
  [[nodiscard]] virtual bool keepsContents() const { return false; }
  virtual CommandResult keep(const std::vector<std::uint8_t>& /*contents*/) { return {}; }

  /// A chip is done, good or bad. The series ends when this throws.
  virtual void chipDone(const SeriesChip& chip) = 0;
};

/// Programs one chip after another with the image in the code buffer: look at the contact, blank
/// check, program, verify. The form's own commands do it.
class ChipSeries {
 public:
  /// `counter` gives each chip its serial number; nullptr: none.
  ChipSeries(frmMain& form, SeriesOperator& person, images::SerialCounter* counter)
      : form_(form), operator_(person), counter_(counter) {}

  /// Until the operator ends it or Stop does. How it ended: Done also after bad chips; what the
  /// counter throws (ImageError, FileError) goes through, with the board idle.
  CommandResult run(std::size_t firstNumber);

 private:
  [[nodiscard]] CommandResult runChips(std::size_t firstNumber);
  [[nodiscard]] SeriesChip doChip(std::size_t number);
  [[nodiscard]] std::string giveNumber();
  void settleNumber(SeriesChip& chip);
  [[nodiscard]] CommandResult checkSocket();
  [[nodiscard]] CommandResult checkContents(bool mayBeZero);
  [[nodiscard]] CommandResult program();
  [[nodiscard]] std::string sumOfImage();
  void dismissAlert();

  frmMain& form_;
  SeriesOperator& operator_;
  images::SerialCounter* counter_;
};

}  // namespace kestrel::form
