#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "app/state/programmer_state.h"
#include "app/work/image_options.h"
#include "images/serial_numbers.h"

namespace kestrel::work {

/// A piece of work: the options of the command line, or what a project says. What is not set was
/// not given, and presses nothing.
struct Work {
  std::optional<std::string> device;
  std::optional<std::string> codeFile;    ///< -i
  std::optional<std::string> saveFile;    ///< -o
  std::optional<std::size_t> model;       ///< --force-model: index of the menu entry
  std::optional<std::size_t> port;        ///< --select-port: index of the port button
  std::optional<std::size_t> setup;       ///< slot 1 to 4
  std::optional<std::int32_t> speed;      ///< 1 to 20
  std::optional<std::size_t> voltage;     ///< index of the voltage button
  std::optional<std::size_t> lane;        ///< index of the lane button
  std::optional<std::int32_t> page;       ///< of display
  std::optional<std::size_t> protection;  ///< index of the protection button
  std::optional<std::int32_t> repeat;     ///< how often read reads
  std::optional<Algorithms> algorithms;   ///< of a project
  ImageOptions image;
  std::optional<std::string> backup;         ///< folder of --backup
  std::optional<images::SerialPlan> serial;  ///< of program --several
  std::optional<std::string> report;         ///< its table
  std::optional<bool> blankCheck;
  std::optional<bool> check;
  std::optional<bool> verify;
  std::optional<bool> force;
  bool several = false;
  bool json = false;
  bool padFF = false;
  bool show = false;
  bool names = false;  ///< of devices: short names alone
};

}  // namespace kestrel::work
