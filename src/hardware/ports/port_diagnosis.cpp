#include "hardware/ports/port_diagnosis.h"

#include <algorithm>

#include "hardware/ports/lpt_filter.h"

namespace kestrel::ports {
namespace {

bool isLptBase(std::uint16_t base) {
  return std::find(kLptBases.begin(), kLptBases.end(), base) != kLptBases.end();
}

const ListedPort* findDevice(const PortSurvey& survey, const std::string& device) {
  for (const ListedPort& each : survey.listed) {
    if (each.device() == device) return &each;
  }
  return nullptr;
}

std::string takenText(const PortSurvey& survey, const PortFinding& finding) {
  if (finding.isDirect) {
    return "a driver of the kernel or another program has this address. Cure: use its device "
           "file instead, --port BASE=/dev/parportN";
  }
  const ListedPort* const listed = findDevice(survey, finding.device);
  if (listed != nullptr && listed->isHeldByPrinterDriver()) {
    return "the printer driver has it. Cure: sudo modprobe -r lp";
  }
  if (finding.holder.empty()) {
    return "another program has it. Cure: end that program; sudo fuser -v " + finding.device +
           " names it";
  }
  return "another program has it (" + finding.holder + "). Cure: end that program";
}

std::string noDeviceText(const PortSurvey& survey, const PortFinding& finding) {
  if (!survey.isUserDriverLoaded) {
    return "the driver ppdev, which makes the device file, is not loaded. Cure: sudo modprobe "
           "ppdev";
  }
  if (findDevice(survey, finding.device) != nullptr) {
    return "the kernel knows the port, but the device file is missing. Cure: sudo udevadm trigger";
  }
  return "there is no such device. Cure: ls /dev/parport* shows those that are there";
}

std::string notPermittedText(const PortSurvey& survey, const PortFinding& finding) {
  const std::string why = survey.isLockedDown
                              ? "the kernel is locked down and forbids direct access"
                              : "direct access is for root alone";
  return why + ". Cure: have a driver, sudo modprobe parport_pc io=" + finding.device +
         " irq=none, and use its device file, --port BASE=/dev/parportN";
}

std::string problemText(const PortSurvey& survey, const PortFinding& finding) {
  switch (*finding.problem) {
    case PortProblem::NoDevice:
      return noDeviceText(survey, finding);
    case PortProblem::NoHardware:
      return "the device file has no port behind it. Cure: ls /proc/sys/dev/parport shows the "
             "ports";
    case PortProblem::NoPermission:
      return "no permission to use it. Cure: sudo usermod -a -G lp $USER, then log in again";
    case PortProblem::Taken:
      return takenText(survey, finding);
    case PortProblem::NotAPort:
      return "it is not a parallel port. Cure: ls /dev/parport* shows those that are there";
    case PortProblem::NotPermitted:
      return notPermittedText(survey, finding);
    case PortProblem::Other:
      break;
  }
  return finding.reason;
}

std::string findingText(const PortSurvey& survey, const PortFinding& finding) {
  const std::string where = "Port " + addressText(finding.base) + "h (" +
                            (finding.isLink ? "link:" : "") + finding.device + "): ";
  if (finding.problem) return where + problemText(survey, finding);
  if (finding.isLink) {
    return where +
           "the adapter answers, but no board behind it. Check the board's cable and power, that "
           "its socket is empty, and the adapter's wires: kestrel-cli link-test --port " +
           addressText(finding.base) + "=link:" + finding.device;
  }
  return where +
         "the port works, but no board answers. Check the board's cable and power, and "
         "that its socket is empty";
}

bool isUsed(const PortSurvey& survey, const std::string& device) {
  return std::any_of(survey.findings.begin(), survey.findings.end(),
                     [&](const PortFinding& each) { return each.device == device; });
}

// The first base with nothing behind it: where a port from elsewhere may stand.
std::uint16_t freeBase(const PortSurvey& survey) {
  for (const std::uint16_t base : kLptBases) {
    const auto isHere = [base](const PortFinding& each) { return each.base == base; };
    if (std::none_of(survey.findings.begin(), survey.findings.end(), isHere)) return base;
  }
  return kLptBases.front();
}

std::string elsewhereText(const PortSurvey& survey, const ListedPort& port) {
  return port.name + " is at " + addressText(port.base) +
         "h, which is none of 378h, 278h and 3BCh. Cure: --port " + addressText(freeBase(survey)) +
         "=" + port.device();
}

std::string noPortText(const PortSurvey& survey) {
  if (!survey.isPortDriverLoaded) {
    return "No parallel port: the driver parport_pc is not loaded. Cure: sudo modprobe -a "
           "parport_pc ppdev";
  }
  return "No parallel port: the driver parport_pc is loaded and finds none. Switch the port on in "
         "the machine's set-up, or fit a card. Cure for a card with serial ports too: sudo "
         "modprobe parport_serial";
}

}  // namespace

std::vector<std::string> diagnose(const PortSurvey& survey) {
  std::vector<std::string> lines;
  for (const PortFinding& each : survey.findings) lines.push_back(findingText(survey, each));
  for (const ListedPort& each : survey.listed) {
    if (isLptBase(each.base) || isUsed(survey, each.device())) continue;
    lines.push_back(elsewhereText(survey, each));
  }
  if (lines.empty()) lines.push_back(noPortText(survey));
  return lines;
}

}  // namespace kestrel::ports
