#include "hardware/ports/real_ports.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "hardware/ports/direct_port.h"
#include "hardware/ports/parport_device.h"

namespace kestrel::ports {
namespace {

bool isListedAt(const std::vector<ListedPort>& listed, std::uint16_t address) {
  return std::any_of(listed.begin(), listed.end(),
                     [address](const ListedPort& each) { return each.base == address; });
}

}  // namespace

RealPorts::RealPorts(SystemCalls& calls, PortOptions options)
    : calls_(calls), options_(std::move(options)) {
  for (const std::uint16_t base : kLptBases) slots_.emplace_back().base = base;
  takeMissing();
}

RealPorts::~RealPorts() {
  for (Slot& each : slots_) giveBack(each);
}

bool RealPorts::isChosen(const std::string& device) const {
  return std::any_of(options_.choices.begin(), options_.choices.end(),
                     [&](const PortChoice& each) { return each.device == device; });
}

// What is to stand at a base: the user's choice, else the port that the kernel lists there, unless
// the user has given that to another base.
void RealPorts::find(Slot& slot, const std::vector<ListedPort>& listed) const {
  slot.device.clear();
  slot.isDirect = false;
  slot.isLink = false;
  for (const ListedPort& each : listed) {
    if (each.base == slot.base && !isChosen(each.device())) slot.device = each.device();
  }
  for (const PortChoice& each : options_.choices) {
    if (each.base != slot.base) continue;
    slot.isDirect = each.isDirect();
    slot.isLink = each.isLink;
    slot.address = each.address;
    slot.device = each.isDirect() ? "0x" + addressText(each.address) : each.device;
  }
}

std::unique_ptr<RealPort> RealPorts::openHere(const Slot& slot,
                                              const std::vector<ListedPort>& listed) {
  if (!slot.isDirect) return std::make_unique<ParportDevice>(calls_, slot.device, slot.base);
  // Its driver would not know of the access, nor keep others off.
  if (isListedAt(listed, slot.address)) throw PortError(PortProblem::Taken, slot.device, EBUSY);
  return std::make_unique<DirectPort>(calls_, slot.address, slot.base,
                                      options_.lockFolder.string());
}

void RealPorts::openLink(Slot& slot) {
  auto port = std::make_unique<LinkPort>(slot.base, slot.device, options_.link);
  slot.link = port.get();
  slot.port = std::move(port);
}

// The guard stands before the claim, which is the first thing that moves a line of the board. An
// adapter is the guard itself.
void RealPorts::open(Slot& slot, const std::vector<ListedPort>& listed) {
  if (slot.isLink) {
    openLink(slot);
    return;
  }
  auto port = openHere(slot, listed);
  slot.guard = std::make_unique<Guard>(*port, options_.guard);
  slot.port = std::move(port);
}

void RealPorts::take(Slot& slot, const std::vector<ListedPort>& listed) {
  try {
    slot.problem.reset();
    open(slot, listed);
    slot.port->take();
    slot.mayVoltageBeOn = false;
    filter_.connect(slot.base, *slot.port, slot.link);
    return;
  } catch (const link::LinkError& error) {
    const bool isTaken = error.problem() == link::LinkProblem::Taken;
    slot.problem = isTaken ? PortProblem::Taken : PortProblem::Other;
    slot.reason = error.what() + (". Cure: " + link::cureOf(error.problem(), slot.device));
  } catch (const PortError& error) {
    slot.problem = error.problem();
    slot.reason = error.what();
  } catch (const RuntimeError& error) {
    slot.problem = PortProblem::Other;
    slot.reason = error.what();
  }
  giveBack(slot);
}

// The guard is dismissed only when the board is switched off and the port given back, and is gone
// before the file is closed: then the port is free for the next program. Else it is left to go on
// trying.
void RealPorts::giveBack(Slot& slot) {
  filter_.disconnect(slot.base);
  if (slot.port) {
    const bool isOff = slot.port->giveBack();
    slot.mayVoltageBeOn = slot.port->mayVoltageBeOn();
    if (isOff && slot.guard) slot.guard->dismiss();
  }
  slot.guard.reset();
  slot.link = nullptr;
  slot.port.reset();
}

void RealPorts::takeMissing() {
  const std::vector<ListedPort> listed = listParallelPorts(options_.root);
  for (Slot& each : slots_) {
    if (each.port && !each.port->isGone()) continue;
    giveBack(each);
    find(each, listed);
    if (!each.device.empty()) take(each, listed);
  }
}

void RealPorts::chooseLink(const std::optional<PortChoice>& choice) {
  std::erase_if(options_.choices, [](const PortChoice& each) { return each.isLink; });
  if (choice) options_.choices.push_back(*choice);
  for (Slot& each : slots_) {
    if (each.isLink || (choice && each.base == choice->base)) giveBack(each);
  }
}

std::vector<std::uint16_t> RealPorts::taken() const {
  std::vector<std::uint16_t> bases;
  for (const Slot& each : slots_) {
    if (each.port && !each.port->isGone()) bases.push_back(each.base);
  }
  return bases;
}

bool RealPorts::holdsPort(std::int16_t base) const {
  return std::any_of(slots_.begin(), slots_.end(), [base](const Slot& each) {
    return each.base == static_cast<std::uint16_t>(base) && each.port && !each.port->isGone();
  });
}

bool RealPorts::mayVoltageBeOn() const {
  return std::any_of(slots_.begin(), slots_.end(), [](const Slot& each) {
    return each.port ? each.port->mayVoltageBeOn() : each.mayVoltageBeOn;
  });
}

void RealPorts::beginOperation() {
  for (Slot& each : slots_) {
    if (each.link != nullptr) each.link->beginOperation();
  }
}

void RealPorts::endOperation() {
  for (Slot& each : slots_) {
    if (each.link != nullptr) each.link->endOperation();
  }
}

void RealPorts::settle() {
  for (Slot& each : slots_) {
    if (each.link != nullptr) each.link->settle();
  }
}

bool RealPorts::switchOff() noexcept {
  bool any = false;
  bool all = true;
  for (Slot& each : slots_) {
    if (!each.port) continue;
    any = true;
    all = each.port->switchOff() && all;
  }
  return any && all;
}

PortFinding RealPorts::findingOf(const Slot& slot) const {
  PortFinding finding{.base = slot.base,
                      .device = slot.device,
                      .isDirect = slot.isDirect,
                      .problem = slot.problem,
                      .reason = slot.reason,
                      .holder = {},
                      .isLink = slot.isLink};
  if (slot.port && slot.port->isGone()) {
    finding.problem = PortProblem::Other;
    finding.reason = slot.port->lossText();
  }
  if (finding.problem == PortProblem::Taken && !slot.isDirect) {
    finding.holder = holderOf(options_.root, slot.device);
  }
  return finding;
}

std::vector<std::string> RealPorts::diagnosis() const {
  PortSurvey survey{.listed = listParallelPorts(options_.root),
                    .findings = {},
                    .isPortDriverLoaded = isModuleLoaded(options_.root, "parport_pc"),
                    .isUserDriverLoaded = isModuleLoaded(options_.root, "ppdev"),
                    .isLockedDown = isLockedDown(options_.root)};
  for (const Slot& each : slots_) {
    if (!each.device.empty()) survey.findings.push_back(findingOf(each));
  }
  return diagnose(survey);
}

}  // namespace kestrel::ports
