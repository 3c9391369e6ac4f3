#include "buffers/buffer_files.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "app/state/text_format.h"
#include "buffers/checksum.h"
#include "devices/families.h"
#include "display/hex_line.h"
#include "images/checksums.h"
#include "platform/atomic_file.h"
#include "platform/file_names.h"

namespace kestrel::buffers {
namespace {

constexpr const char* kAllFiles = "All Files (*.*)|*.*";
constexpr std::uintmax_t kDataFileBytes = 8192;
constexpr std::size_t kErasedCodeBytes = 1'048'577;
constexpr std::size_t kErasedDataBytes = 8'193;
constexpr std::size_t kIdleFileBytes = 257;

constexpr const char* kReadingText =
    "\r\n\r\n\r\n\r\n\r\n\r\n                      READING FILE ... WAIT";

/// Frees the memory too: the vector is only used while a file is loaded.
void release(std::vector<std::uint8_t>& bytes) { std::vector<std::uint8_t>().swap(bytes); }

/// The part of a buffer that is in use; throws RuntimeError 9 when it is longer than the buffer.
std::span<const std::uint8_t> firstBytes(const std::vector<std::uint8_t>& buffer,
                                         std::int32_t length) {
  if (std::cmp_less(length, 0) || std::cmp_greater(length, buffer.size())) throwSubscript();
  return std::span(buffer).first(static_cast<std::size_t>(length));
}

}  // namespace

bool BufferFiles::tried(const char* title, const std::function<void()>& steps) {
  try {
    steps();
    return true;
  } catch (const FileError& error) {
    controls_.StatusBar.setText("");
    reporting_.noteEnding(Ending::Refused, error.what());
    reporting_.LogMessage(error.what());
    reporting_.PlaySoundEvent("ERROR");
    dialogs_.messageBox({.text = error.what(), .title = title, .icon = MessageIcon::Exclamation});
    return false;
  }
}

void BufferFiles::startOpening() {
  lamps_.DataFlowLampOff();
  buffers_.DisplayMode = "Read";
  buffers_.FileBytes.resize(kIdleFileBytes);
}

void BufferFiles::mnuFileOpenCode_Click() {
  startOpening();
  const std::string name = dialogs_.openFile("Open Code File", kAllFiles);
  if (!name.empty()) openCodeFile(name);
}

void BufferFiles::mnuFileOpenData_Click() {
  startOpening();
  const std::string name = dialogs_.openFile("Open Data File (eeprom)", kAllFiles);
  if (!name.empty()) openDataFile(name);
}

void BufferFiles::openCodeFile(const std::string& name) {
  const std::string earlier = std::exchange(buffers_.CodeFileName, name);
  if (!ReadBinaryFile()) buffers_.CodeFileName = earlier;
}

void BufferFiles::openDataFile(const std::string& name) {
  const std::string earlier = std::exchange(buffers_.DataFileName, name);
  if (!ReadBinaryFileData()) buffers_.DataFileName = earlier;
}

bool BufferFiles::ReadBinaryFile() {
  const std::string& name = buffers_.CodeFileName;
  const bool isRead = tried("Can't Open Code File", [&] {
    buffers_.FileBytes = readWholeFile(name, kCodeBufferBytes, &stop_);
  });
  if (!isRead) return false;
  showCode(CodeSource::File, name);
  return true;
}

void BufferFiles::loadImage(const std::string& name, std::vector<std::uint8_t> image,
                            const std::string& found) {
  startOpening();
  reporting_.LogMessage(found);
  buffers_.FileBytes = std::move(image);
  buffers_.CodeFileName.clear();
  showCode(CodeSource::Import, name);
}

void BufferFiles::showCode(CodeSource source, const std::string& name) {
  controls_.FileNameCodeText.setCaption(upperCase(name));
  controls_.BufferDisplay.setText(kReadingText);
  lamps_.DataFlowLampOn();
  controls_.StatusBar.setText("Reading Code File " + shownName(name) + " into Buffer... Wait");
  storeCode(source, name);
  lamps_.DataFlowLampOff();
  const std::string length = std::to_string(buffers_.CodeLength);
  reporting_.LogMessage("File " + name + " - was read into Buffer. " + length + " bytes long.");
  reporting_.LogMessage("Read File CRC = $" + buffers_.FileChecksumText);
  reporting_.LogMessage("You can Install a Blank Eprom for Programming");
  finishLoading();
  showCodeLoaded();
  reporting_.PlaySoundEvent("DONE");
}

// Bytes beyond the file keep what the buffer held before.
void BufferFiles::storeCode(CodeSource source, const std::string& name) {
  buffers_.CodeLength = narrowed<std::int32_t>(buffers_.FileBytes.size());
  buffers_.CodeImageBytes = buffers_.CodeLength;
  std::ranges::copy(buffers_.FileBytes, buffers_.CodeBuffer.begin());
  buffers_.CodeFrom = {.source = source, .name = name};
  buffers_.CodeChanged = false;
  ++buffers_.CodeLoads;
  buffers_.FileChecksum = narrowed<std::int32_t>(images::sum16(buffers_.FileBytes));
  buffers_.FileChecksumText = checksumText(buffers_.FileChecksum);
  release(buffers_.FileBytes);
}

// The scroll range follows the code length, also after a data file.
void BufferFiles::finishLoading() {
  display_.DisplayPageMemory();
  controls_.VScroll1.setMaximum(buffers_.CodeLength / display::kPageBytes - 1);
  controls_.ProgressBar1.setValue(0);
  controls_.StatusBar.setText("");
}

void BufferFiles::changeCode(std::vector<std::uint8_t> buffer, std::int32_t length,
                             const std::string& done) {
  buffers_.CodeBuffer = std::move(buffer);
  showChanged(length);
  if (!done.empty()) reporting_.LogMessage(done);
}

void BufferFiles::putCodeByte(std::size_t address, std::uint8_t value, std::int32_t length) {
  at(buffers_.CodeBuffer, address) = value;
  showChanged(length);
}

void BufferFiles::showChanged(std::int32_t length) {
  buffers_.CodeChanged = true;
  buffers_.DisplayMode = "Read";
  if (buffers_.CodeLength != length) {
    buffers_.CodeLength = length;
    buffers_.CodeImageBytes = length;
    controls_.VScroll1.setMaximum(length / display::kPageBytes - 1);
    controls_.FileNameCodeSize.setCaption("(" + std::to_string(length) + ")");
  }
  enableForCode();
  display_.DisplayPageMemory();
}

void BufferFiles::enableForCode() {
  Controls& c = controls_;
  if (!device_.FamilyCode.empty()) {
    for (Button* const button :
         {&c.Verify_button, &c.menuVerifyCode, &c.Program_button, &c.menuProgramCode}) {
      alert_.enable(*button);
    }
  }
  c.toolbarButton(2).setEnabled(true);
  for (Button* const button :
       {&c.mnuFileSaveCode, &c.mnuFileSaveCodeAs, &c.menuEraseCode, &c.Erase_button}) {
    button->setEnabled(true);
  }
  buffers_.CodeBufferValid = 1;
}

void BufferFiles::showCodeLoaded() {
  Controls& c = controls_;
  enableForCode();
  c.FileNameCodeSize.setCaption("(" + std::to_string(buffers_.CodeLength) + ")");
  const bool hasDataMemory = devices::familyOf(device_.FamilyCode).hasDataMemory;
  c.CheckCode.setEnabled(hasDataMemory);
  c.CheckData.setEnabled(hasDataMemory);
  c.CheckCode.setValue(1);
  c.CheckData.setValue(0);
}

bool BufferFiles::ReadBinaryFileData() {
  const std::string& name = buffers_.DataFileName;
  std::uintmax_t length = 0;
  const bool isRead = tried("Can't Open Data File", [&] {
    std::error_code notRegular;
    length = std::filesystem::file_size(name, notRegular);
    if (notRegular || length <= kDataFileBytes) {
      buffers_.FileBytes = readWholeFile(name, kCodeBufferBytes, &stop_);
      length = buffers_.FileBytes.size();
    }
  });
  if (!isRead) return false;
  controls_.FileNameDataText.setCaption(name);
  lamps_.DataFlowLampOn();
  buffers_.DataLength = static_cast<std::int32_t>(
      std::min<std::uintmax_t>(length, std::numeric_limits<std::int32_t>::max()));
  if (length > kDataFileBytes) {
    refuseDataFile(length);
    return true;
  }
  storeData();
  return true;
}

// The activity lamp stays on and DataLength keeps the refused length; this is intended.
void BufferFiles::refuseDataFile(std::uintmax_t length) {
  release(buffers_.FileBytes);
  reporting_.noteEnding(Ending::Refused, "the data file is longer than 8192 bytes");
  reporting_.LogMessage("Data File Size is " + std::to_string(length) +
                        " bytes, bigger than the 8192 allowed - Will Not Open");
  dialogs_.messageBox({.text = "Can't Open Data File Bigger than 8192 Bytes",
                       .title = "Data File to Big",
                       .icon = MessageIcon::Exclamation});
}

void BufferFiles::storeData() {
  std::ranges::copy(buffers_.FileBytes, buffers_.DataBuffer.begin());
  release(buffers_.FileBytes);
  lamps_.DataFlowLampOff();
  reporting_.LogMessage("File " + buffers_.DataFileName + " - was read into DataBuffer. " +
                        std::to_string(buffers_.DataLength) + " bytes long.");
  reporting_.LogMessage("You can Install a Blank Eprom for Programming");
  finishLoading();
  showDataLoaded();
  buffers_.DataBufferValid = 1;
}

void BufferFiles::showDataLoaded() {
  Controls& c = controls_;
  c.FileNameDataSize.setCaption("(" + std::to_string(buffers_.DataLength) + ")");
  c.toolbarButton(5).setEnabled(true);
  for (Button* const button :
       {&c.Verify_button, &c.menuVerifyData, &c.Program_button, &c.menuProgramData,
        &c.mnuFileSaveData, &c.mnuFileSaveDataAs, &c.Erase_button, &c.menuEraseData}) {
    alert_.enable(*button);
  }
}

void BufferFiles::mnuFileSaveCodeAs_Click() {
  const std::string name = dialogs_.saveFile("Save CODE BUFFER As...", kAllFiles);
  if (!name.empty()) saveCodeAs(name);
}

void BufferFiles::mnuFileSaveCode_Click() {
  if (!buffers_.CodeFileName.empty()) {
    (void)writeCode();
    return;
  }
  const std::string name = dialogs_.saveFile("Save CODE BUFFER ...", kAllFiles);
  if (!name.empty()) saveCodeAs(name);
}

void BufferFiles::saveCodeAs(const std::string& name) {
  saveUnder(name, buffers_.CodeFileName, controls_.FileNameCodeText,
            [this] { return writeCode(); });
}

void BufferFiles::saveUnder(const std::string& name, std::string& fileName, Control& label,
                            const std::function<bool()>& write) {
  const std::string earlierName = std::exchange(fileName, name);
  const std::string earlierCaption = label.caption();
  label.setCaption(name);
  if (write()) return;
  fileName = earlierName;
  label.setCaption(earlierCaption);
}

bool BufferFiles::writeCode() {
  const std::string& name = buffers_.CodeFileName;
  return tried("Can't Save Code File", [&] {
    controls_.StatusBar.setText("Writing Binary File " + shownName(name) + " ... Wait");
    writeFileAtomically(name, firstBytes(buffers_.CodeBuffer, buffers_.CodeLength), &stop_);
    reporting_.LogMessage("File Sucessfully Saved as " + name);
    controls_.StatusBar.setText("");
    buffers_.CodeFrom = {.source = CodeSource::File, .name = name};
    buffers_.CodeImageBytes = buffers_.CodeLength;
    buffers_.CodeChanged = false;
  });
}

// The question looks at the name of the code file and the bytes go into that file; this asymmetry
// with saving the code buffer is intended.
void BufferFiles::mnuFileSaveData_Click() {
  if (buffers_.CodeFileName.empty()) {
    const std::string name = dialogs_.saveFile("Save DATA Buffer ...", kAllFiles);
    if (name.empty()) return;
    buffers_.DataFileName = name;
    controls_.FileNameDataText.setCaption(name);
  }
  (void)writeData(buffers_.CodeFileName);
}

void BufferFiles::mnuFileSaveDataAs_Click() {
  const std::string name = dialogs_.saveFile("Save DATA Buffer ...", kAllFiles);
  if (name.empty()) return;
  saveUnder(name, buffers_.DataFileName, controls_.FileNameDataText,
            [&] { return writeData(name); });
}

bool BufferFiles::writeData(const std::string& path) {
  const std::string& name = buffers_.DataFileName;
  return tried("Can't Save Data File", [&] {
    controls_.StatusBar.setText("Writing Data Binary File " + shownName(name) + " ... Wait");
    writeFileAtomically(path, firstBytes(buffers_.DataBuffer, buffers_.DataLength), &stop_);
    reporting_.LogMessage("File Sucessfully Saved as " + name);
    controls_.StatusBar.setText("");
  });
}

void BufferFiles::exportImage(const std::string& name, std::span<const std::uint8_t> contents) {
  (void)tried("Can't Save Code File", [&] {
    writeFileAtomically(name, contents, &stop_);
    reporting_.LogMessage("File Sucessfully Saved as " + name);
  });
}

void BufferFiles::mnuFileClose_Click() {
  dialogs_.messageBox({.text = "Add 'mnuFileClose_Click' code."});
}

void BufferFiles::Erase_button_Click() {
  if (controls_.CheckCode.isTicked()) EraseCodeBuffer();
  if (controls_.CheckData.isTicked()) EraseDataBuffer();
}

void BufferFiles::EraseCodeBuffer() {
  std::fill_n(buffers_.CodeBuffer.begin(), kErasedCodeBytes, kErased);
  buffers_.CodeFrom = {.source = CodeSource::Erased};
  buffers_.CodeChanged = false;
  ++buffers_.CodeLoads;
  disableForErased(controls_.menuVerifyCode, controls_.menuProgramCode);
}

void BufferFiles::EraseDataBuffer() {
  std::fill_n(buffers_.DataBuffer.begin(), kErasedDataBytes, kErased);
  disableForErased(controls_.menuVerifyData, controls_.menuProgramData);
}

void BufferFiles::disableForErased(Button& verifyEntry, Button& programEntry) {
  alert_.setEnabled(controls_.Verify_button, false);
  verifyEntry.setEnabled(false);
  alert_.setEnabled(controls_.Program_button, false);
  programEntry.setEnabled(false);
  reporting_.LogMessage("Buffer has been Erased");
  buffers_.DisplayMode = "Read";
  display_.DisplayPageMemory();
}

}  // namespace kestrel::buffers
