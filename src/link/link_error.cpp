#include "link/link_error.h"

namespace kestrel::link {

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
      return "choose the adapter's own device, or load its program: make -C firmware flash PORT=" +
             device;
    case LinkProblem::OtherVersion:
      return "load the program that belongs to this version: make -C firmware flash PORT=" + device;
    case LinkProblem::Gone:
      return "plug the adapter in again";
    case LinkProblem::SwitchedOff:
      break;
  }
  return {};
}

}  // namespace kestrel::link
