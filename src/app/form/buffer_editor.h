#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/form/frm_main.h"
#include "images/edit_history.h"

namespace kestrel::form {

/// Changes of the code buffer that can be taken back and made again. Loading, reading and erasing
/// replace the buffer: they end what can be taken back, but for an erase, which is a change itself.
class BufferEditor {
 public:
  explicit BufferEditor(frmMain& form) : form_(form) {}

  /// The bytes that Save writes, and the addresses that can be changed: those and all of the chip.
  [[nodiscard]] images::Bytes image() const;
  [[nodiscard]] images::Bytes memory() const;
  [[nodiscard]] std::size_t size() const;

  /// Other bytes in the memory, as many as it has. What is changed behind the image makes the image
  /// as long as the memory.
  void change(const std::string& name, const images::Bytes& memory);

  /// Another image in place of the present one; what is left of a longer one becomes FFh.
  void replace(const std::string& name, const images::Bytes& image);

  /// One byte of the memory; `goesOn`: it is typed digit by digit.
  void putByte(std::size_t address, std::uint8_t value, bool goesOn);

  /// The address of what was changed; nothing when there was nothing to do.
  std::optional<std::size_t> undo();
  std::optional<std::size_t> redo();
  [[nodiscard]] const std::string* undoName() const { return history_.undoName(); }
  [[nodiscard]] const std::string* redoName() const { return history_.redoName(); }

  /// The buffer is about to be erased.
  void keepBeforeErase();

  /// After each command: the buffer may have been replaced, or saved.
  void lookAtBuffer();

 private:
  void put(const std::string& name, images::Bytes buffer, std::size_t length);
  void took(const std::optional<images::EditHistory::Step>& step, images::Bytes buffer,
            bool isMadeAgain);
  void tookErase(CodeOrigin& from, bool isMadeAgain);

  frmMain& form_;
  images::EditHistory history_;
  std::int32_t loads_ = 0;                    // of the buffer that the history is about
  CodeOrigin unchangedFrom_;                  // where it came from, or was saved to
  std::vector<CodeOrigin> fromBeforeErases_;  // of each erase that is not taken back
  CodeOrigin lastFrom_;                       // at the last look, as the next
  bool wasChanged_ = false;
  images::Bytes beforeErase_;  // empty: no erase is going on
};

}  // namespace kestrel::form
