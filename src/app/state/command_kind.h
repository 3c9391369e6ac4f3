#pragma once

namespace kestrel {

class Control;
class Controls;

/// The commands that a front end tells apart; each has a button, most a menu entry too.
enum class CommandKind {
  Other,
  Read,
  BlankCheck,
  Verify,
  Program,
  EraseChip,
  Display,
  TestHardware,
  EraseBuffer,
  OpenCode,
  SaveCode,
  LoadSetup,
};

/// What the control is pressed for.
[[nodiscard]] CommandKind commandKind(const Controls& controls, const Control& pressed);

}  // namespace kestrel
