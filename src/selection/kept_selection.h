#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "hardware/error_alert.h"

namespace kestrel::selection {

/// Keeps what is selected, so that a command which is broken off leaves it as it was: a device
/// chosen by halves, with the voltage of another one, would destroy a chip.
class SelectionKeeper {
 public:
  SelectionKeeper(SelectionState& device, TimingState& timing, BufferState& buffers,
                  Controls& controls, hardware::ErrorAlert& alert)
      : device_(device), timing_(timing), buffers_(buffers), controls_(controls), alert_(alert) {}

  /// A selection as it stood at a moment, with all that choosing a device changes on the form.
  struct Kept {
    SelectionState device;
    TimingState timing;
    std::int32_t codeLength = 0;
    std::int16_t dataBufferValid = 0;
    std::int32_t position = -1;
    std::string listText;
    std::int32_t lastPage = 0;
    std::int32_t programSpeed = 0;
    int checkCode = 0;
    int checkData = 0;
    std::array<bool, 4> voltages{};
    std::string showCaption;
    std::vector<std::pair<Control*, bool>> enabled;
    std::vector<std::pair<Control*, bool>> visible;
  };

  [[nodiscard]] Kept keep() const;

  /// False, and nothing is changed, when the selection is still the kept one.
  bool putBack(const Kept& kept);

 private:
  [[nodiscard]] std::vector<Button*> commands() const;
  [[nodiscard]] std::vector<Control*> others() const;

  SelectionState& device_;
  TimingState& timing_;
  BufferState& buffers_;
  Controls& controls_;
  hardware::ErrorAlert& alert_;
};

}  // namespace kestrel::selection
