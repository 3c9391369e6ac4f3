#include "selection/kept_selection.h"

namespace kestrel::selection {

std::vector<Button*> SelectionKeeper::commands() const {
  Controls& c = controls_;
  return {&c.Read_button,       &c.menuReadCode,        &c.Display_button,  &c.menuDisplayCode,
          &c.Blank_button,      &c.menuBlankCheck,      &c.Verify_button,   &c.menuVerifyCode,
          &c.Program_button,    &c.menuProgramCode,     &c.Erase_button,    &c.menuEraseCode,
          &c.EraseFlash_button, &c.menuFlashShowCodeID, &c.menuEraseFlash,  &c.menuEraseData,
          &c.menuDisplayData,   &c.menuReadData,        &c.menuVerifyData,  &c.menuProgramData,
          &c.mnuFileOpenData,   &c.Show_button,         &c.toolbarButton(4)};
}

std::vector<Control*> SelectionKeeper::others() const {
  Controls& c = controls_;
  std::vector<Control*> list{&c.Frame5,
                             &c.CheckBlankPriorProgramming,
                             &c.VerifyAfterProgramming,
                             &c.CheckChipFirst,
                             &c.FrameVoltageSelection,
                             &c.PleaseSelect,
                             &c.Frame3,
                             &c.BufferDisplay,
                             &c.CheckCode,
                             &c.CheckData,
                             &c.toolbarButton(3),
                             &c.toolbarButton(4),
                             &c.toolbarButton(5),
                             &c.FileNameDataLabel,
                             &c.FileNameDataSize,
                             &c.FileNameDataText};
  for (OptionButton& button : c.Voltage_button) list.push_back(&button);
  return list;
}

SelectionKeeper::Kept SelectionKeeper::keep() const {
  const Controls& c = controls_;
  Kept kept{.device = device_,
            .timing = timing_,
            .codeLength = buffers_.CodeLength,
            .dataBufferValid = buffers_.DataBufferValid,
            .position = c.Device.position(),
            .listText = c.Device.text(),
            .lastPage = c.VScroll1.maximum(),
            .programSpeed = c.Slider1.value(),
            .checkCode = c.CheckCode.value(),
            .checkData = c.CheckData.value(),
            .voltages = {},
            .showCaption = c.Show_button.caption(),
            .enabled = {},
            .visible = {}};
  for (std::size_t i = 0; i < kept.voltages.size(); ++i) {
    kept.voltages[i] = c.Voltage_button[i].value();
  }
  for (Button* const button : commands()) {
    kept.enabled.emplace_back(button, alert_.isEnabled(*button));
  }
  for (Control* const control : others()) {
    kept.enabled.emplace_back(control, control->enabled());
    kept.visible.emplace_back(control, control->visible());
  }
  return kept;
}

bool SelectionKeeper::putBack(const Kept& kept) {
  Controls& c = controls_;
  if (device_ == kept.device && timing_ == kept.timing && c.Device.position() == kept.position) {
    return false;
  }
  device_ = kept.device;
  timing_ = kept.timing;
  buffers_.CodeLength = kept.codeLength;
  buffers_.DataBufferValid = kept.dataBufferValid;
  c.Device.putBack(kept.position, kept.listText);
  c.VScroll1.putBackMaximum(kept.lastPage);
  c.Slider1.putBack(kept.programSpeed);
  c.CheckCode.setValue(kept.checkCode);
  c.CheckData.setValue(kept.checkData);
  c.Show_button.setCaption(kept.showCaption);
  for (std::size_t i = 0; i < kept.voltages.size(); ++i) {
    c.Voltage_button[i].putBack(kept.voltages[i]);
  }
  for (const auto& [control, enabled] : kept.enabled) {
    if (auto* const button = dynamic_cast<Button*>(control)) {
      alert_.setEnabled(*button, enabled);
    } else {
      control->setEnabled(enabled);
    }
  }
  for (const auto& [control, visible] : kept.visible) control->setVisible(visible);
  return true;
}

}  // namespace kestrel::selection
