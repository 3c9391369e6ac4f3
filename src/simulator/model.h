#pragma once

namespace kestrel::sim {

/// The three boards.
enum class Model { kestrel4 = 4, kestrel5 = 5, kestrel6 = 6 };

}  // namespace kestrel::sim
