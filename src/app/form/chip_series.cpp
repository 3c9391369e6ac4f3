#include "app/form/chip_series.h"

#include <algorithm>
#include <span>

#include "app/state/text_format.h"
#include "devices/families.h"
#include "images/checksums.h"
#include "images/identity.h"

namespace kestrel::form {
namespace {

void setTicked(CheckBox& box, bool ticked) {
  if (box.isTicked() != ticked) box.press();
}

}  // namespace

CommandResult ChipSeries::run(std::size_t firstNumber) {
  form_.runner().run([this] {
    setTicked(form_.controls().VerifyAfterProgramming, true);
    setTicked(form_.controls().CheckBlankPriorProgramming,
              false);  // done before the number is given
  });
  try {
    return runChips(firstNumber);
  } catch (...) {
    (void)form_.releaseSocket();
    throw;
  }
}

CommandResult ChipSeries::runChips(std::size_t firstNumber) {
  for (std::size_t number = firstNumber;; ++number) {
    const CommandResult released = form_.releaseSocket();
    if (released.ending != Ending::Done) return released;
    if (!operator_.isNextChipIn(number)) return {};
    const SeriesChip chip = doChip(number);
    operator_.chipDone(chip);
    const bool isOver = chip.result.ending == Ending::Stopped ||
                        chip.result.ending == Ending::RunTimeError ||
                        chip.result.ending == Ending::Cancelled;
    if (isOver) {
      (void)form_.releaseSocket();
      return chip.result;
    }
  }
}

SeriesChip ChipSeries::doChip(std::size_t number) {
  using Clock = std::chrono::steady_clock;
  const auto begin = Clock::now();
  SeriesChip chip{.number = number};
  chip.result = checkSocket();
  if (chip.isGood()) {
    if (counter_ != nullptr) chip.serial = giveNumber();
    chip.result = program();
    if (counter_ != nullptr) settleNumber(chip);
  }
  if (chip.isGood()) chip.sum = sumOfImage();
  dismissAlert();
  chip.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
  return chip;
}

void ChipSeries::settleNumber(SeriesChip& chip) {
  if (chip.isGood()) {
    counter_->confirm();
  } else {
    counter_->giveBack();
    chip.serial.clear();
  }
}

std::string ChipSeries::giveNumber() {
  const std::string number = counter_->take();
  const images::Bytes bytes = images::serialBytes(counter_->plan(), number);
  std::ranges::copy(bytes, form_.state().CodeBuffer.begin() + counter_->plan().at);
  return number;
}

// An EPROM must be blank, which a chip without contact is too: it is found when it does not verify.
// An EEPROM may hold anything, but not 00h everywhere by chance: the pins are open there.
CommandResult ChipSeries::checkSocket() {
  const devices::Family& family = devices::familyOf(form_.state().FamilyCode);
  if (family.bus == devices::BusKind::Serial) {  // asks for an acknowledge by itself
    return operator_.keepsContents() ? checkContents(true) : CommandResult();
  }
  if (family.offersErase || !family.hasBlankCheck) return checkContents(false);
  CommandResult result = form_.runner().press(form_.controls().Blank_button);
  if (result.ending == Ending::Differs && form_.state().ReadByte == 0) {
    result.reason = result.reason + " (it reads 00h there: look at the contact)";
  }
  return result;
}

CommandResult ChipSeries::checkContents(bool mayBeZero) {
  std::vector<std::uint8_t> chip;
  CommandResult result = form_.readAside(chip);
  if (result.ending != Ending::Done) return result;
  if (!mayBeZero && images::isAll(chip, 0)) {
    return {.ending = Ending::Failed, .reason = "every byte reads 00h: the chip has no contact"};
  }
  return operator_.keepsContents() ? operator_.keep(chip) : result;
}

CommandResult ChipSeries::program() {
  return form_.runner().press(form_.controls().Program_button);
}

std::string ChipSeries::sumOfImage() {
  const auto size = static_cast<std::size_t>(form_.state().DeviceSizeBytes);
  return images::addressText(images::sum16(std::span(form_.state().CodeBuffer).first(size)));
}

void ChipSeries::dismissAlert() {
  form_.runner().run([this] { form_.controls().Error_label.press(); });
}

}  // namespace kestrel::form
