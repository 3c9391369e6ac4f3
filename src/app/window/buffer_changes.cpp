#include "app/window/buffer_changes.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <array>
#include <sstream>

#include "app/window/change_dialog.h"
#include "app/window/texts.h"
#include "images/changes.h"
#include "images/image_file.h"
#include "platform/atomic_file.h"

namespace kestrel::window {
namespace {

using images::Bytes;
using images::ImageError;
using Values = ChangeDialog::Values;

std::uint8_t byteOf(const std::string& text) {
  const std::uint32_t value = images::parseAddress(text);
  if (value > 0xFF) throw ImageError("\"" + text + "\" is no byte; use 00 to FF");
  return static_cast<std::uint8_t>(value);
}

Bytes patternOf(const std::string& text) {
  Bytes pattern;
  std::istringstream words(text);
  for (std::string word; words >> word;) pattern.push_back(byteOf(word));
  return pattern;
}

Bytes bytesOfFile(const std::string& name) {
  if (name.empty()) throw ImageError("choose a file");
  return readWholeFile(name, images::kMostImageBytes);
}

bool isFirst(const std::string& value) { return value == "0"; }

images::ByteOrder orderOf(const std::string& value) {
  return isFirst(value) ? images::ByteOrder::LittleEndian : images::ByteOrder::BigEndian;
}

Bytes joined(const Bytes& image, const Values& v) {
  return isFirst(v[0]) ? images::joinLanes(image, bytesOfFile(v[1]))
                       : images::joinLanes(bytesOfFile(v[1]), image);
}

Bytes withChecksum(const Bytes& memory, const Values& v) {
  const images::ChecksumKind& kind = images::kChecksumKinds.at(std::stoul(v[0]));
  return images::putChecksum(memory, kind, images::parseRange(v[1]), images::parseAddress(v[2]),
                             orderOf(v[3]));
}

ChangeField rangeField() { return {.label = "&Range, FROM-TO:", .name = "changeRange"}; }
ChangeField atField() { return {.label = "&At address:", .name = "changeAt"}; }
ChangeField laneField(const char* label) {
  return {.label = label, .name = "changeLane", .words = {"even bytes", "odd bytes"}};
}

}  // namespace

/// A change: what it asks for, and what it makes of the memory or of the image (`isOfImage`).
struct BufferChanges::Operation {
  const char* title;
  const char* entry;
  const char* name;
  std::vector<ChangeField> fields;
  Bytes (*change)(const Bytes&, const Values&);
  bool isOfImage = false;
};

namespace {

using Operation = BufferChanges::Operation;

// clang-format off
const std::array<Operation, 10>& operations() {
  static const std::array<Operation, 10> all{{
      {"Fill", "Fi&ll...", "bufferFill",
       {rangeField(), {.label = "&Bytes, hexadecimal:", .name = "changeBytes", .value = "FF"}},
       [](const Bytes& m, const Values& v) { return images::fillRange(m, images::parseRange(v[0]), patternOf(v[1])); }},
      {"Copy", "Cop&y...", "bufferCopy", {rangeField(), {.label = "&To address:", .name = "changeAt"}},
       [](const Bytes& m, const Values& v) { return images::copyRange(m, images::parseRange(v[0]), images::parseAddress(v[1])); }},
      {"Swap bytes", "S&wap Bytes of Words...", "bufferSwap", {rangeField()},
       [](const Bytes& m, const Values& v) { return images::swapWordBytes(m, images::parseRange(v[0])); }},
      {"Reverse bits", "Re&verse Bits...", "bufferReverse", {rangeField()},
       [](const Bytes& m, const Values& v) { return images::reverseBits(m, images::parseRange(v[0])); }},
      {"Put checksum", "Put Chec&ksum...", "bufferChecksum",
       {{.label = "&Checksum:", .name = "changeKind", .words = {"16-bit sum", "CRC-16/CCITT", "CRC-32"}},
        {.label = "&Of the range:", .name = "changeRange"}, atField(),
        {.label = "&Byte order:", .name = "changeOrder", .words = {"low byte first", "high byte first"}}},
       withChecksum},
      {"Insert file", "&Insert File...", "bufferInsert",
       {{.label = "&File, byte by byte:", .name = "changeFile", .isFile = true}, atField()},
       [](const Bytes& m, const Values& v) { return images::insertAt(m, bytesOfFile(v[0]), images::parseAddress(v[1])); }},
      {"Split", "&Split Odd and Even...", "bufferSplit", {laneField("&Keep the:")},
       [](const Bytes& i, const Values& v) { return images::splitLane(i, isFirst(v[0]) ? images::Lane::Even : images::Lane::Odd); }, true},
      {"Join", "&Join Odd and Even...", "bufferJoin",
       {laneField("The &buffer holds the:"), {.label = "The &others, a file:", .name = "changeFile", .isFile = true}},
       joined, true},
      {"Halve", "&Halve...", "bufferHalve", {{.label = "&Keep the:", .name = "changeHalf", .words = {"lower half", "upper half"}}},
       [](const Bytes& i, const Values& v) { return images::halve(i, isFirst(v[0]) ? images::Half::Low : images::Half::High); }, true},
      {"Double", "Do&uble...", "bufferDouble", {},
       [](const Bytes& i, const Values&) { return images::twice(i); }, true},
  }};
  return all;
}
// clang-format on

QString stepText(const char* what, const std::string* name) {
  return name == nullptr ? QString(what)
                         : QString(what) + " " + onOneLine(QString::fromStdString(*name));
}

}  // namespace

BufferChanges::BufferChanges(QMainWindow& window, form::BufferEditor& editor, QMenu& menu)
    : QObject(&window), window_(window), editor_(editor) {
  QAction* const first = menu.actions().value(0);
  undo_ = addStep(menu, "bufferUndo", "Ctrl+Z", &form::BufferEditor::undo);
  redo_ = addStep(menu, "bufferRedo", "Ctrl+Shift+Z", &form::BufferEditor::redo);
  for (QAction* const step : {undo_, redo_}) menu.insertAction(first, step);
  auto* const changes = new QMenu("Chan&ge", &window);
  changes->setObjectName("bufferChange");
  menu.insertMenu(first, changes);
  menu.insertSeparator(first);
  bool isOfImage = false;
  for (const Operation& operation : operations()) {
    if (operation.isOfImage && !isOfImage) changes->addSeparator();
    isOfImage = operation.isOfImage;
    QAction* const entry =
        changes->addAction(operation.entry, this, [this, &operation] { run(operation); });
    entry->setObjectName(operation.name);
  }
  showSteps();
}

QAction* BufferChanges::addStep(QMenu& menu, const char* name, const char* key,
                                std::optional<std::size_t> (form::BufferEditor::*step)()) {
  auto* const action = new QAction(&menu);
  action->setObjectName(name);
  action->setShortcut(QKeySequence(key));
  connect(action, &QAction::triggered, this, [this, step] {
    const std::optional<std::size_t> address = (editor_.*step)();
    if (address && changed_) changed_(static_cast<std::int32_t>(*address));
  });
  return action;
}

void BufferChanges::showSteps() {
  undo_->setText(stepText("&Undo", editor_.undoName()));
  redo_->setText(stepText("&Redo", editor_.redoName()));
  undo_->setEnabled(editor_.undoName() != nullptr);
  redo_->setEnabled(editor_.redoName() != nullptr);
}

void BufferChanges::run(const Operation& operation) {
  const Bytes before = operation.isOfImage ? editor_.image() : editor_.memory();
  Bytes after;
  const auto change = [&](const Values& values) {
    if (before.empty()) throw ImageError("the buffer is empty; choose a device or open a file");
    after = operation.change(before, values);
    if (!operation.isOfImage) return std::string();
    return "The image of " + std::to_string(before.size()) + " bytes becomes one of " +
           std::to_string(after.size()) + ".";
  };
  std::vector<ChangeField> fields = operation.fields;
  for (ChangeField& field : fields) {
    const bool isRange = QString(field.name) == "changeRange" && !before.empty();
    if (isRange) field.value = QString::fromStdString(images::rangeText(images::wholeOf(before)));
  }
  ChangeDialog dialog(operation.title, fields, change, &window_);
  if (dialog.exec() != QDialog::Accepted) return;
  operation.isOfImage ? editor_.replace(operation.title, after)
                      : editor_.change(operation.title, after);
  const auto place = std::ranges::mismatch(before, after).in1 - before.begin();
  if (changed_) changed_(operation.isOfImage ? 0 : static_cast<std::int32_t>(place));
}

}  // namespace kestrel::window
