#include "display/exports.h"

#include "app/state/text_format.h"
#include "platform/atomic_file.h"

namespace kestrel::display {
namespace {

constexpr const char* kMaker = " - HALVARD LABS INC. https://www.halvardlabs.example";
constexpr std::size_t kSeparatorLength = 60;

}  // namespace

double statCode(std::string_view text) {
  double sum = 0;
  for (const char c : text) sum += static_cast<unsigned char>(c);
  return sum;
}

void Exports::save(const char* fileName, const Heading& heading, const std::string& text) {
  std::string file = std::string(heading.title) + kMaker + "\r\n";
  file.append(heading.contents).append("\r\n");
  file += time_.shortDate() + " " + time_.longTime();
  file += " StatCode:" + printForm(statCode(text));
  file += " Model:" + printForm(portState_.KestrelModel) + "\r\n";
  file += std::string(kSeparatorLength, '-') + "\r\n";
  file += text + "\r\n";
  writeFileAtomically(folders_.working / fileName, file);
}

void Exports::BufferDisplay_DblClick() {
  save("KESTREL.BUF",
       {.title = "KESTREL BUFFER DISPLAY FILE",
        .contents = "The following contents are the contents from Buffer DIsplay"},
       controls_.BufferDisplay.text());
  reporting_.LogMessage("Buffer DIsplay was Saved to KESTREL.BUF file");
  reporting_.PlaySoundEvent("OK");
}

void Exports::SystemLog_DblClick() {
  save("KESTREL.LOG",
       {.title = "KESTREL SYSTEM LOG FILE",
        .contents = "The following contents are the log from the Kestrel Program"},
       controls_.SystemLog.text());
  reporting_.LogMessage("System Log was Saved to KESTREL.LOG file");
}

}  // namespace kestrel::display
