#pragma once

#include "devices/device_table.h"
#include "support/form_rig.h"

namespace kestrel::test {

constexpr sim::Model kModels[]{sim::Model::kestrel4, sim::Model::kestrel5, sim::Model::kestrel6};

/// All set up as a person would before Program: the chip in its socket, blank or with contents, the
/// device chosen, the image open. The flash rows, which the list calls not available, are opened.
struct PreparedForm : SimulatedForm {
  PreparedForm(const std::string& chip, Bytes givenImage, sim::Model model = sim::Model::kestrel5,
               const Bytes& contents = {})
      : SimulatedForm(model, Trace::Off), image(std::move(givenImage)) {
    start();
    insert(chip, contents);
    for (auto& row : rig.state.DeviceTable) {
      if (row[devices::kLetterColumn] == "F") row[devices::kListedColumn] = "Y";
    }
    devices::FillDeviceList(rig.state, rig.state.algorithms, rig.controls.Device);
    rig.select(chip);  // the first device that is named for it
    if (!image.empty()) rig.openImage(image);
    rig.clearLog();
    bench.findings().clear();
  }
  /// What the first bytes of a buffer that was empty are after Read.
  [[nodiscard]] Bytes read(std::size_t count) {
    std::ranges::fill(rig.state.CodeBuffer, std::uint8_t{0});
    rig.press("Read_button");
    const auto begin = rig.state.CodeBuffer.begin();
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
  }

  Bytes image;
};

}  // namespace kestrel::test
