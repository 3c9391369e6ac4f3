#include "app/launch/simulated_board.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "platform/atomic_file.h"
#include "platform/file_names.h"
#include "platform/file_target.h"
#include "simulator/chip_factory.h"

namespace kestrel::launch {
namespace {

constexpr std::size_t kAnyChipFile = 16 << 20;  // far beyond every chip: the size is judged below

/// A file that cannot be looked at (a loop of links, a closed folder) counts: reading it tells why.
bool isThere(const std::filesystem::path& file) {
  std::error_code ignored;
  return std::filesystem::status(file, ignored).type() != std::filesystem::file_type::not_found;
}

bool isSet(const LaunchOptions& options, Fault::Kind kind) {
  return std::ranges::find(options.faults, kind, &Fault::kind) != options.faults.end();
}

}  // namespace

SimulatedBoard::SimulatedBoard(const LaunchOptions& options, std::string_view defaultChip,
                               const StopSwitch* stop)
    : base_(options.lpt.value_or(0x378)), stop_(stop) {
  sim::Board& board = bench_.plug(options.model.value_or(sim::Model::kestrel5), base_);
  bench_.judgePulses(options.algorithms == Algorithms::DataSheet);
  board.setVppByHand(options.boardVppMillivolts);
  if (!isSet(options, Fault::Kind::EmptySocket)) insertChip(options, defaultChip);
  for (const Fault& fault : options.faults) fitFault(fault);
}

void SimulatedBoard::insertChip(const LaunchOptions& options, std::string_view defaultChip) {
  auto chip = sim::makeChip(options.chip ? options.chip->type : defaultChip);
  if (chip && options.chip && !options.chip->file.empty()) {
    chipFile_ = options.chip->file;
    if (isThere(chipFile_)) readChipFile(*chip);
  }
  bench_.board(base_)->insert(std::move(chip));
}

void SimulatedBoard::readChipFile(sim::Chip& chip) {
  const std::size_t size = chip.contents().size();
  fileContents_ = readWholeFile(chipFile_, kAnyChipFile, stop_);
  if (fileContents_.size() != size) {
    throw UsageError("--chip: " + shownName(chipFile_.string()) + " holds " +
                     std::to_string(fileContents_.size()) + " bytes, a " + chip.typeName() +
                     " has " + std::to_string(size));
  }
  chip.load(fileContents_);
}

void SimulatedBoard::fitFault(const Fault& fault) {
  sim::Board& board = *bench_.board(base_);
  switch (fault.kind) {
    case Fault::Kind::WeakCell:
      if (board.chip() == nullptr) throw UsageError("--fault weak: the socket is empty");
      if (fault.value >= board.chip()->contents().size()) {
        throw UsageError("--fault weak: the address is past the end of the chip");
      }
      weakCells_.push_back(static_cast<std::uint32_t>(fault.value));
      board.fitWeakCell(weakCells_.back());
      break;
    case Fault::Kind::StuckDataLine:
      board.stickDataLine(static_cast<int>(fault.value), false);  // a short to ground
      break;
    case Fault::Kind::Unplug:
      unplugAfter_.push_back(fault.value);
      break;
    case Fault::Kind::EmptySocket:
      break;
  }
}

void SimulatedBoard::plug(sim::Model model, std::uint16_t base) {
  exchanged_ = exchanged_ || model != board().model() || base != base_;
  auto chip = board().takeOut();
  bench_.unplug(base_);
  bench_.plug(model, base).insert(std::move(chip));
  base_ = base;
}

void SimulatedBoard::takeChipOut() {
  if (!beside_) beside_ = bench_.board(base_)->takeOut();
}

void SimulatedBoard::putChipBack() {
  if (beside_) bench_.board(base_)->insert(std::move(beside_));
}

// The file of --chip itself names the series alone.
void SimulatedBoard::changeChip(std::size_t number) {
  if (board().chip() == nullptr) return;
  if (!seriesFile_.empty()) saveChip();
  auto chip = sim::makeChip(board().takeOut()->typeName());
  if (seriesFile_.empty()) seriesFile_ = chipFile_;
  if (!seriesFile_.empty()) {
    chipFile_ = seriesFile_.string() + "." + std::to_string(number);
    fileContents_.clear();
    if (isThere(chipFile_)) readChipFile(*chip);
  }
  board().insert(std::move(chip));
  for (const std::uint32_t address : weakCells_) board().fitWeakCell(address);
}

// A chip that sits beside latches at 0 while the board is switched on is no fault of the program.
void SimulatedBoard::startUpDone() {
  bench_.findings().clear();
  if (!unplugAfter_.empty()) bench_.unplugAfter(std::ranges::min(unplugAfter_));
}

void SimulatedBoard::tryChipFile(bool isChanged) const {
  const bool isToBeMade = fileContents_.empty();
  if (!chipFile_.empty() && (isChanged || isToBeMade)) const FileTarget tried(chipFile_);
}

void SimulatedBoard::saveChip() {
  sim::Board* const board = bench_.board(base_);
  if (chipFile_.empty() || board == nullptr || board->chip() == nullptr) return;
  const auto contents = board->chip()->contents();
  if (std::ranges::equal(contents, fileContents_)) return;
  writeFileAtomically(chipFile_, contents, stop_);
  fileContents_.assign(contents.begin(), contents.end());
}

void SimulatedBoard::releaseChip() {
  struct Release {
    std::filesystem::path& file;
    ~Release() { file.clear(); }
  } const release{chipFile_};
  saveChip();
}

std::string chipTypeForDevice(std::string_view deviceName) {
  std::istringstream words{std::string(deviceName)};
  std::string found;
  for (std::string word; words >> word;) {
    for (const std::string_view type : sim::chipTypeNames()) {
      if (word == type) return word;
      if (found.empty() && word.ends_with(type)) found = type;  // "X28C256" is a 28C256
    }
  }
  return found;
}

}  // namespace kestrel::launch
