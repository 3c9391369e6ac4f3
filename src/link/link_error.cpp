#include "link/link_error.h"

namespace kestrel::link {
namespace {

std::string loadingOn(const std::string& device) {
  return "avrdude -p m328p -c arduino -P " + device +
         " -b 115200 -U flash:w:kestrel-link.hex:i (the manual has it all: The link)";
}

}  // namespace

std::string cureOf(LinkProblem problem, const std::string& device) {
  switch (problem) {
    case LinkProblem::NoDevice:
      return "plug the adapter in; ls /dev/ttyACM* /dev/ttyUSB* shows its name";
    case LinkProblem::NoPermission:
      return "sudo usermod -a -G dialout $USER, then log in again";
    case LinkProblem::Taken:
      return "end the other program: fuser -v " + device;
    case LinkProblem::NotASerialLine:
    case LinkProblem::NotAnAdapter:
    case LinkProblem::NoAnswer:
      return "choose the adapter's own device, or load its program: " + loadingOn(device);
    case LinkProblem::OtherVersion:
      return "load the program that belongs to this version: " + loadingOn(device);
    case LinkProblem::Gone:
      return "plug the adapter in again";
    case LinkProblem::SwitchedOff:
      break;
  }
  return {};
}

}  // namespace kestrel::link
