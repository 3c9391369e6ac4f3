#include "hardware/hardware_config.h"

#include "app/state/text_format.h"

namespace kestrel::hardware {

std::string hardwareConfigText(std::string_view dateAndTime, int port, int model) {
  std::string text = "[KESTREL6 SETUP]\r\nDATE = ";
  text.append(dateAndTime).append("\r\n");
  text.append(kPortKey).append(hexText(port)).append("\r\n");
  text.append(kModelKey).append(printForm(model)).append("\r\n");
  return text;
}

}  // namespace kestrel::hardware
