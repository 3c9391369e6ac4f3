#pragma once

namespace kestrel::window {

/// The section of the per-user store for what the window alone keeps: folders, panels, way of
/// working. The main window's place stands under "Settings".
inline constexpr const char* kWindowSection = "Window";

}  // namespace kestrel::window
