#include "app/state/command_kind.h"

#include <algorithm>
#include <array>
#include <utility>

#include "app/state/controls.h"

namespace kestrel {

CommandKind commandKind(const Controls& c, const Control& pressed) {
  using enum CommandKind;
  const std::array<std::pair<const Control*, CommandKind>, 21> commands{{
      {&c.Read_button, Read},
      {&c.menuReadCode, Read},
      {&c.Blank_button, BlankCheck},
      {&c.menuBlankCheck, BlankCheck},
      {&c.Verify_button, Verify},
      {&c.menuVerifyCode, Verify},
      {&c.Program_button, Program},
      {&c.menuProgramCode, Program},
      {&c.EraseFlash_button, EraseChip},
      {&c.menuEraseFlash, EraseChip},
      {&c.Display_button, Display},
      {&c.TestHardware_button, TestHardware},
      {&c.menuTestHardware, TestHardware},
      {&c.Erase_button, EraseBuffer},
      {&c.menuEraseCode, EraseBuffer},
      {&c.menuEraseData, EraseBuffer},
      {&c.mnuFileOpenCode, OpenCode},
      {&c.tbToolBar[0], OpenCode},
      {&c.mnuFileSaveCode, SaveCode},
      {&c.mnuFileSaveCodeAs, SaveCode},
      {&c.tbToolBar[1], SaveCode},
  }};
  const auto isIt = [&](const auto& row) { return row.first == &pressed; };
  const auto* const found = std::ranges::find_if(commands, isIt);
  if (found != commands.end()) return found->second;
  const auto isSetup = [&](const Button& entry) { return &entry == &pressed; };
  return std::ranges::any_of(c.LoadSetup, isSetup) ? LoadSetup : Other;
}

}  // namespace kestrel
