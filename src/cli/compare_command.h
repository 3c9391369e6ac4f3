#pragma once

namespace kestrel::cli {

class Session;

/// `compare`: reads the chip and reports every difference from -i FILE and what they mean. Throws
/// EarlyEnd with kDiffers when there is one.
void compareChip(Session& session);

}  // namespace kestrel::cli
