#pragma once

#include "app/state/programmer_state.h"

namespace kestrel {

/// Splits LinearAddress into AddrHigh, AddrMid and AddrLow.
inline void splitLinearAddress(LatchState& latches) {
  latches.AddrHigh = latches.LinearAddress / latches.AddrDivHigh;
  const std::int32_t rest = latches.LinearAddress - latches.AddrHigh * latches.AddrDivHigh;
  latches.AddrMid = rest / latches.AddrDivLow;
  latches.AddrLow = rest % latches.AddrDivLow;
}

}  // namespace kestrel
