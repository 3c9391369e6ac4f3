#pragma once

#include <optional>
#include <vector>

#include "app/state/controls.h"
#include "app/state/programmer_state.h"
#include "operations/image_check.h"
#include "platform/dialogs.h"

namespace kestrel::operations {

/// The programming voltage that the next Program applies, in volts; nothing for a chip that is
/// programmed with 5 V alone. It follows the selection, not the voltage buttons.
[[nodiscard]] std::optional<double> voltageToApply(const SelectionState& device);

/// What a person should know before the first pulse: chip, image, voltage, what follows; a warning
/// where something does not fit.
[[nodiscard]] std::vector<Fact> programmingFacts(const SelectionState& device,
                                                 const BufferState& buffers,
                                                 const Controls& controls, Algorithms algorithms);

/// What reading the chip before the question has shown.
[[nodiscard]] Fact checkFact(const ImageCheck::Result& check);

}  // namespace kestrel::operations
