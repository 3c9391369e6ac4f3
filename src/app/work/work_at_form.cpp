#include "app/work/work_at_form.h"

#include <array>

#include "app/launch/option_values.h"
#include "app/state/text_format.h"
#include "app/work/work_options.h"
#include "devices/data_sheets.h"
#include "devices/families.h"
#include "setups/setup_files.h"

namespace kestrel::work {
namespace {

void press(Button& button, const std::string& whyDisabled, const Use& use) {
  if (!button.enabled()) throw launch::UsageError(whyDisabled);
  use([&button] { button.press(); });
}

void loadSetup(Controls& c, std::size_t slot, const Use& use) {
  const std::string digit = std::to_string(slot);
  press(c.Setup, {}, use);
  // A file that is there and cannot be used has its own reason.
  if (!c.LoadSetup.at(slot - 1).enabled()) (void)setups::summaryOf(".", slot);
  const std::string why = "--setup " + digit + ": there is no file KSSetup" + digit +
                          ".INI in this folder; save-setup " + digit + " NAME makes one";
  press(c.LoadSetup.at(slot - 1), why, use);
}

void choosePort(Controls& c, const Work& work, const Use& use) {
  const std::array<Button*, 3> models{&c.ForceKestrel4, &c.ForceKestrel5, &c.ForceKestrel6};
  if (work.port) use([&] { c.LPTSelection.at(*work.port).press(); });
  if (work.model) press(*models.at(*work.model), {}, use);
}

void tick(CheckBox& box, const std::optional<bool>& ticked, const Use& use) {
  if (ticked && *ticked != box.isTicked()) use([&box] { box.press(); });
}

std::string wordOf(const CheckBox& box) { return box.isTicked() ? kYes : kNo; }

/// The word of the button that is on.
template <std::size_t count>
std::optional<std::string> wordOf(const std::array<OptionButton, count>& buttons,
                                  const std::array<std::string_view, count>& words) {
  for (std::size_t i = 0; i < count; ++i) {
    if (buttons[i].value() && !words[i].empty()) return std::string(words[i]);
  }
  return std::nullopt;
}

}  // namespace

std::string unless(const SelectionState& device, const std::string& what,
                   const std::string& reason) {
  return what + ": " + (device.FamilyCode.empty() ? "no device is selected; add -d NAME" : reason);
}

void applyWork(form::frmMain& form, const Work& work, const DeviceCatalogue::Device* device,
               const Use& use) {
  Controls& c = form.controls();
  const ProgrammerState& state = form.state();
  if (work.setup) loadSetup(c, *work.setup, use);
  choosePort(c, work, use);
  if (device != nullptr) {
    use([&] { c.Device.setPosition(device->position); });
  }
  checkOffered(work, state, state.algorithms);
  if (work.speed) use([&] { c.Slider1.setValue(*work.speed); });
  if (work.voltage) use([&] { c.Voltage_button.at(*work.voltage).press(); });
  if (work.lane) use([&] { c.HiLow_button.at(*work.lane).press(); });
  tick(c.CheckChipFirst, work.check, use);
  tick(c.CheckBlankPriorProgramming, work.blankCheck, use);
  tick(c.VerifyAfterProgramming, work.verify, use);
  if (work.protection) use([&] { c.ProtectionSelection.at(*work.protection).press(); });
  tick(c.AnyCode, work.force, use);
  if (work.repeat) use([&] { c.ReadTimes.setValue(*work.repeat); });
}

// What is asked for and does nothing would be believed in: no option is passed over.
void checkOffered(const Work& work, const SelectionState& device, Algorithms algorithms) {
  const std::string name(trimmed(device.DeviceName));
  const auto refuseUnless = [&](bool isOffered, const std::string& option, const std::string& why) {
    if (!isOffered) throw launch::UsageError(unless(device, option, why));
  };
  const bool isChosen = !device.FamilyCode.empty();
  const bool isSheet = algorithms == Algorithms::DataSheet;
  const devices::DataSheet* const sheet = isSheet ? devices::dataSheetOf(name) : nullptr;
  const auto refuseUnlessSheet = [&](bool isOffered, const std::string& option, const char* what) {
    refuseUnless(isOffered, option,
                 isSheet ? name + " has no " + what + "; leave " + option + " out"
                         : "it is for --algorithms datasheet; add it");
  };
  if (work.voltage) {
    refuseUnless(std::cmp_less_equal(*work.voltage, device.VppClass), "--vpp",
                 name + " does not take " + voltageText(*work.voltage) + " (offered: " +
                     voltagesOf(device.VppClass) + "); leave --vpp out or choose one of these");
  }
  if (work.check.value_or(false)) {
    refuseUnless(isChosen && devices::isEprom(devices::familyOf(device.FamilyCode)), "--check",
                 "not offered for this device");
  }
  if (work.blankCheck.value_or(false)) refuseUnless(isChosen, "--blank-check", {});
  if (work.verify.value_or(false)) refuseUnless(isChosen, "--verify", {});
  if (work.protection.value_or(0) != 0) {
    refuseUnlessSheet(sheet != nullptr && devices::hasProtection(*sheet), "--protect",
                      "software protection");
  }
  if (work.force.value_or(false)) {
    refuseUnlessSheet(sheet != nullptr && devices::isAskedForCode(*sheet), "--force",
                      "code that is asked for");
  }
}

ProjectItems itemsAtForm(form::frmMain& form) {
  Controls& c = form.controls();
  const ProgrammerState& state = form.state();
  const auto ifShown = [](const Control& control, std::optional<std::string> word) {
    return control.visible() ? std::move(word) : std::nullopt;
  };
  const auto box = [&](const CheckBox& each) { return ifShown(each, wordOf(each)); };
  const bool hasDevice = !state.DeviceName.empty() && c.Device.position() != -1;
  return {
      {kAlgorithmsKey, wordOf(state.algorithms)},
      {"device", hasDevice ? std::optional<std::string>(trimmed(state.DeviceName)) : std::nullopt},
      {"speed", std::to_string(c.Slider1.value())},
      {"vpp", wordOf(c.Voltage_button, kVoltageWords)},
      {"lane", wordOf(c.HiLow_button, kLaneWords)},
      {"check", box(c.CheckChipFirst)},
      {"blank-check", box(c.CheckBlankPriorProgramming)},
      {"verify", box(c.VerifyAfterProgramming)},
      {"protect", ifShown(c.FrameProtection, wordOf(c.ProtectionSelection, kProtectionWords))},
      {"force", box(c.AnyCode)},
      {"repeat", std::to_string(c.ReadTimes.value())}};
}

void openPadded(bool padFF, const std::function<void()>& open, const std::function<void()>& erase) {
  open();
  if (!padFF) return;
  erase();
  open();
}

}  // namespace kestrel::work
