#include "app/form/frm_main.h"

#include "app/form/units.h"

namespace kestrel::form {

frmMain::frmMain(const Machine& machine) : units_(std::make_unique<Units>(machine)) {
  units_->connectAll();
}

frmMain::~frmMain() = default;

Controls& frmMain::controls() { return units_->controls; }

ProgrammerState& frmMain::state() { return units_->state; }

CommandRunner& frmMain::runner() { return units_->runner; }

}  // namespace kestrel::form
