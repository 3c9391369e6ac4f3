#include "hardware/board_probe.h"

#include "app/state/text_format.h"

namespace kestrel::hardware {
namespace {

// The probes look at status bits 4 to 6 alone: first all low, then all high.
constexpr int kProbeLines = 0x70;
constexpr int kBoardAnswers = 0x0070;

// Latch 3 with data bit 4 pulled down, which a model 6 alone can do, and without.
constexpr std::uint8_t kPullDownD4 = 0x60;
constexpr std::uint8_t kNoPullDown = 0x40;

}  // namespace

void BoardProbe::data(std::uint8_t value) { port_.PortOut(portState_.PortBase, value); }

void BoardProbe::control(std::uint8_t value) { port_.PortOut(portState_.ControlPort, value); }

int BoardProbe::settledStatusLines() {
  board_.bus.WaitSettlingTime();
  return port_.PortIn(portState_.StatusPort) & kProbeLines;
}

// Loads latch 3 so that the data latch drives the bus, then changes the data under the standing
// strobe of latch 4, which is transparent as long; control 06h shows the low half of the bus.
BoardProbe::Signature BoardProbe::probeModel5or6() {
  data(0x9F);
  control(0x0E);
  control(0x00);
  data(0x00);
  control(0x06);
  const int first = settledStatusLines();
  control(0x00);
  data(0xFF);
  control(0x06);
  const int second = settledStatusLines();
  return first * 256 + second;
}

// The same with the model 4 codes: strobes of latches 2, 3, 4 and at the end latch 2 idle.
BoardProbe::Signature BoardProbe::probeModel4() {
  control(0x09);
  data(0xBF);
  control(0x01);
  control(0x09);
  data(0x00);
  control(0x0F);
  control(0x09);
  const int first = settledStatusLines();
  data(0xFF);
  control(0x0F);
  control(0x09);
  const int second = settledStatusLines();
  control(0x08);
  return first * 256 + second;
}

std::uint8_t BoardProbe::readWithLatch3(std::uint8_t value) {
  data(value);
  control(0x0E);
  control(0x00);
  board_.bus.GetNibbles();
  return latches_.ReadByte;
}

// GetNibbles decodes for the new model but selects the nibbles with the codes applied last: before
// the first detection both are 0, and a model 6 is then taken for a model 5. That is how the
// classic way goes; the other one applies the codes of models 5 and 6 first.
bool BoardProbe::answersAsModel6() {
  if (chosen_.algorithms == Algorithms::DataSheet) board_.registers.ApplyPortAndModel();
  const std::uint8_t pulledDown = readWithLatch3(kPullDownD4);
  const std::uint8_t released = readWithLatch3(kNoPullDown);
  return pulledDown == 0xEF && released == 0xFF;
}

void BoardProbe::CheckHardware() {
  board_.lamps.DataFlowLampOn();
  const Signature a = probeModel5or6();
  const Signature b = probeModel4();
  board_.lamps.DataFlowLampOff();
  if (a == kBoardAnswers) {
    portState_.KestrelModel = 5;
    portState_.DetectedPort = portState_.PortBase;
  }
  if (b == kBoardAnswers) {
    portState_.KestrelModel = 4;
    portState_.DetectedPort = portState_.PortBase;
  }
  if (portState_.KestrelModel == 5 && answersAsModel6()) portState_.KestrelModel = 6;
  if (a != kBoardAnswers && b != kBoardAnswers) {
    reporting_.LogMessage("Port " + hexText(portState_.PortBase) + " Not Responding");
  }
}

}  // namespace kestrel::hardware
