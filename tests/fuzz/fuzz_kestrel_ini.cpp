// The start-up with any kestrel6.ini: it always comes up, with its ports beside each other and the
// board idle.

#include "support/script_form.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrel;
  test::ScriptForm form;
  std::filesystem::create_directory(form.rig.folder / "config");
  form.file("config/kestrel6.ini", {reinterpret_cast<const char*>(data), size});
  form.rig.form.Form_Load();
  const ProgrammerState& s = form.s;
  const bool isUp = form.c.Device.items().size() > 1 && s.StatusPort == s.PortBase + 1 &&
                    s.RegShadow0 == 0x40 && !form.rig.form.runner().isRunning();
  if (!isUp) std::abort();
  return 0;
}
