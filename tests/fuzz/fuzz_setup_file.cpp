// A setup restored from any file: every control stays in its range and the program lives on.

#include <fstream>

#include "support/script_form.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrel;
  static const auto form = [] {
    auto loaded = std::make_unique<test::ScriptForm>();
    loaded->load();
    return loaded;
  }();
  std::ofstream(form->rig.folder / "KSSetup1.INI", std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  form->rig.press("Setup");
  form->rig.press("LoadSetup1");
  form->rig.clearLog();
  form->rig.dialogs.boxes.clear();
  form->rig.sounds.played.clear();
  (void)form->port.taken();
  const Controls& c = form->c;
  const auto isIn = [](std::int32_t value, std::int32_t lowest, std::int32_t highest) {
    return value >= lowest && value <= highest;
  };
  const auto devices = static_cast<std::int32_t>(c.Device.items().size());
  const bool isSound =
      isIn(c.Slider1.value(), 1, 20) && isIn(c.Device.position(), -1, devices - 1) &&
      isIn(c.CheckCode.value(), 0, 2) && isIn(c.CheckData.value(), 0, 2) &&
      isIn(c.VerifyAfterProgramming.value(), 0, 2) && c.CheckBlankPriorProgramming.value() == 0 &&
      !form->rig.form.runner().isRunning();
  if (!isSound) std::abort();
  return 0;
}
