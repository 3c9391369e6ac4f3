#include "buffers/buffer_files.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "app/state/text_format.h"
#include "buffers/checksum.h"
#include "display/hex_line.h"
#include "platform/atomic_file.h"

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
    p_.controls.StatusBar.setText("");
    p_.reporting.LogMessage(error.what());
    p_.reporting.PlaySoundEvent("ERROR");
    p_.dialogs.messageBox({.text = error.what(), .title = title, .icon = MessageIcon::Exclamation});
    return false;
  }
}

void BufferFiles::startOpening() {
  p_.lamps.DataFlowLampOff();
  p_.state.DisplayMode = "Read";
  p_.state.FileBytes.resize(kIdleFileBytes);
}

void BufferFiles::mnuFileOpenCode_Click() {
  startOpening();
  const std::string name = p_.dialogs.openFile("Open Code File", kAllFiles);
  if (!name.empty()) openCodeFile(name);
}

void BufferFiles::mnuFileOpenData_Click() {
  startOpening();
  const std::string name = p_.dialogs.openFile("Open Data File (eeprom)", kAllFiles);
  if (!name.empty()) openDataFile(name);
}

void BufferFiles::openCodeFile(const std::string& name) {
  const std::string earlier = std::exchange(p_.state.CodeFileName, name);
  if (!ReadBinaryFile()) p_.state.CodeFileName = earlier;
}

void BufferFiles::openDataFile(const std::string& name) {
  const std::string earlier = std::exchange(p_.state.DataFileName, name);
  if (!ReadBinaryFileData()) p_.state.DataFileName = earlier;
}

bool BufferFiles::ReadBinaryFile() {
  const std::string& name = p_.state.CodeFileName;
  const bool isRead = tried("Can't Open Code File",
                            [&] { p_.state.FileBytes = readWholeFile(name, kCodeBufferBytes); });
  if (!isRead) return false;
  p_.controls.FileNameCodeText.setCaption(upperCase(name));
  p_.controls.BufferDisplay.setText(kReadingText);
  p_.lamps.DataFlowLampOn();
  p_.controls.StatusBar.setText("Reading Code File " + name + " into Buffer... Wait");
  storeCode();
  p_.lamps.DataFlowLampOff();
  const std::string length = std::to_string(p_.state.CodeLength);
  p_.reporting.LogMessage("File " + name + " - was read into Buffer. " + length + " bytes long.");
  p_.reporting.LogMessage("Read File CRC = $" + p_.state.FileChecksumText);
  p_.reporting.LogMessage("You can Install a Blank Eprom for Programming");
  finishLoading();
  showCodeLoaded();
  p_.state.CodeBufferValid = 1;
  p_.reporting.PlaySoundEvent("DONE");
  return true;
}

// Bytes beyond the file keep what the buffer held before.
void BufferFiles::storeCode() {
  ProgrammerState& s = p_.state;
  s.CodeLength = narrowed<std::int32_t>(s.FileBytes.size());
  std::ranges::copy(s.FileBytes, s.CodeBuffer.begin());
  s.FileChecksum = 0;
  for (const std::uint8_t byte : s.FileBytes) s.FileChecksum = addToChecksum(s.FileChecksum, byte);
  s.FileChecksumText = checksumText(s.FileChecksum);
  release(s.FileBytes);
}

// The scroll range follows the code length, also after a data file.
void BufferFiles::finishLoading() {
  p_.display.DisplayPageMemory();
  p_.controls.VScroll1.setMaximum(p_.state.CodeLength / display::kPageBytes - 1);
  p_.controls.ProgressBar1.setValue(0);
  p_.controls.StatusBar.setText("");
}

void BufferFiles::showCodeLoaded() {
  Controls& c = p_.controls;
  if (!p_.state.FamilyCode.empty()) {
    for (Button* const button :
         {&c.Verify_button, &c.menuVerifyCode, &c.Program_button, &c.menuProgramCode}) {
      p_.alert.enable(*button);
    }
  }
  c.FileNameCodeSize.setCaption("(" + std::to_string(p_.state.CodeLength) + ")");
  c.toolbarButton(2).setEnabled(true);
  for (Button* const button :
       {&c.mnuFileSaveCode, &c.mnuFileSaveCodeAs, &c.menuEraseCode, &c.Erase_button}) {
    button->setEnabled(true);
  }
  const bool hasDataMemory = p_.state.FamilyCode == "MJ";
  c.CheckCode.setEnabled(hasDataMemory);
  c.CheckData.setEnabled(hasDataMemory);
  c.CheckCode.setValue(1);
  c.CheckData.setValue(0);
}

bool BufferFiles::ReadBinaryFileData() {
  const std::string& name = p_.state.DataFileName;
  std::uintmax_t length = 0;
  const bool isRead = tried("Can't Open Data File", [&] {
    std::error_code notRegular;
    length = std::filesystem::file_size(name, notRegular);
    if (notRegular || length <= kDataFileBytes) {
      p_.state.FileBytes = readWholeFile(name, kCodeBufferBytes);
      length = p_.state.FileBytes.size();
    }
  });
  if (!isRead) return false;
  p_.controls.FileNameDataText.setCaption(name);
  p_.lamps.DataFlowLampOn();
  p_.state.DataLength = static_cast<std::int32_t>(
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
  release(p_.state.FileBytes);
  p_.reporting.LogMessage("Data File Size is " + std::to_string(length) +
                          " bytes, bigger than the 8192 allowed - Will Not Open");
  p_.dialogs.messageBox({.text = "Can't Open Data File Bigger than 8192 Bytes",
                         .title = "Data File to Big",
                         .icon = MessageIcon::Exclamation});
}

void BufferFiles::storeData() {
  std::ranges::copy(p_.state.FileBytes, p_.state.DataBuffer.begin());
  release(p_.state.FileBytes);
  p_.lamps.DataFlowLampOff();
  p_.reporting.LogMessage("File " + p_.state.DataFileName + " - was read into DataBuffer. " +
                          std::to_string(p_.state.DataLength) + " bytes long.");
  p_.reporting.LogMessage("You can Install a Blank Eprom for Programming");
  finishLoading();
  showDataLoaded();
  p_.state.DataBufferValid = 1;
}

void BufferFiles::showDataLoaded() {
  Controls& c = p_.controls;
  c.FileNameDataSize.setCaption("(" + std::to_string(p_.state.DataLength) + ")");
  c.toolbarButton(5).setEnabled(true);
  for (Button* const button :
       {&c.Verify_button, &c.menuVerifyData, &c.Program_button, &c.menuProgramData,
        &c.mnuFileSaveData, &c.mnuFileSaveDataAs, &c.Erase_button, &c.menuEraseData}) {
    p_.alert.enable(*button);
  }
}

void BufferFiles::mnuFileSaveCodeAs_Click() {
  const std::string name = p_.dialogs.saveFile("Save CODE BUFFER As...", kAllFiles);
  if (!name.empty()) saveCodeAs(name);
}

void BufferFiles::mnuFileSaveCode_Click() {
  if (!p_.state.CodeFileName.empty()) {
    (void)writeCode();
    return;
  }
  const std::string name = p_.dialogs.saveFile("Save CODE BUFFER ...", kAllFiles);
  if (!name.empty()) saveCodeAs(name);
}

void BufferFiles::saveCodeAs(const std::string& name) {
  saveUnder(name, p_.state.CodeFileName, p_.controls.FileNameCodeText,
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
  const std::string& name = p_.state.CodeFileName;
  return tried("Can't Save Code File", [&] {
    p_.controls.StatusBar.setText("Writing Binary File " + name + " ... Wait");
    writeFileAtomically(name, firstBytes(p_.state.CodeBuffer, p_.state.CodeLength));
    p_.reporting.LogMessage("File Sucessfully Saved as " + name);
    p_.controls.StatusBar.setText("");
  });
}

// The question looks at the name of the code file and the bytes go into that file; this asymmetry
// with saving the code buffer is intended.
void BufferFiles::mnuFileSaveData_Click() {
  if (p_.state.CodeFileName.empty()) {
    const std::string name = p_.dialogs.saveFile("Save DATA Buffer ...", kAllFiles);
    if (name.empty()) return;
    p_.state.DataFileName = name;
    p_.controls.FileNameDataText.setCaption(name);
  }
  (void)writeData(p_.state.CodeFileName);
}

void BufferFiles::mnuFileSaveDataAs_Click() {
  const std::string name = p_.dialogs.saveFile("Save DATA Buffer ...", kAllFiles);
  if (name.empty()) return;
  saveUnder(name, p_.state.DataFileName, p_.controls.FileNameDataText,
            [&] { return writeData(name); });
}

bool BufferFiles::writeData(const std::string& path) {
  const std::string& name = p_.state.DataFileName;
  return tried("Can't Save Data File", [&] {
    p_.controls.StatusBar.setText("Writing Data Binary File " + name + " ... Wait");
    writeFileAtomically(path, firstBytes(p_.state.DataBuffer, p_.state.DataLength));
    p_.reporting.LogMessage("File Sucessfully Saved as " + name);
    p_.controls.StatusBar.setText("");
  });
}

void BufferFiles::mnuFileClose_Click() {
  p_.dialogs.messageBox({.text = "Add 'mnuFileClose_Click' code."});
}

void BufferFiles::Erase_button_Click() {
  if (p_.controls.CheckCode.isTicked()) EraseCodeBuffer();
  if (p_.controls.CheckData.isTicked()) EraseDataBuffer();
}

void BufferFiles::EraseCodeBuffer() {
  std::fill_n(p_.state.CodeBuffer.begin(), kErasedCodeBytes, kErased);
  disableForErased(p_.controls.menuVerifyCode, p_.controls.menuProgramCode);
}

void BufferFiles::EraseDataBuffer() {
  std::fill_n(p_.state.DataBuffer.begin(), kErasedDataBytes, kErased);
  disableForErased(p_.controls.menuVerifyData, p_.controls.menuProgramData);
}

void BufferFiles::disableForErased(Button& verifyEntry, Button& programEntry) {
  p_.alert.setEnabled(p_.controls.Verify_button, false);
  verifyEntry.setEnabled(false);
  p_.alert.setEnabled(p_.controls.Program_button, false);
  programEntry.setEnabled(false);
  p_.reporting.LogMessage("Buffer has been Erased");
  p_.state.DisplayMode = "Read";
  p_.display.DisplayPageMemory();
}

}  // namespace kestrel::buffers
