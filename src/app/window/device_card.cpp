#include "app/window/device_card.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <utility>

#include "app/state/text_format.h"
#include "app/window/theme.h"
#include "devices/chip_pins.h"
#include "devices/families.h"
#include "devices/remarks.h"
#include "hardware/vpp_output.h"

namespace kestrel::window {
namespace {

constexpr int kLookMs = 100;  // at the levels, while a command runs
constexpr int kChipMs = 500;  // at the chip, which a hand exchanges
constexpr int kBytesPerKB = 1024;

std::uint32_t maskOf(const hardware::VppOutput& vpp) {
  constexpr std::uint32_t kPin1 = 1U << 0;
  constexpr std::uint32_t kPin3 = 1U << 2;
  constexpr std::uint32_t kPin24 = 1U << 23;
  return (vpp.onPin1 ? kPin1 : 0) | (vpp.onPin3 ? kPin3 : 0) | (vpp.onPin24 ? kPin24 : 0);
}

}  // namespace

DeviceCard::DeviceCard(Controls& controls, const PortState& port, const LatchState& latches,
                       const SelectionState& device, const AlgorithmState& chosen,
                       const Binder& binder, QWidget* parent)
    : QWidget(parent), port_(port), latches_(latches), device_(device), chosen_(chosen) {
  setObjectName("deviceCard");
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 2, 0, 2);
  socket_ = new SocketView(this);
  row->addWidget(socket_, 0, Qt::AlignTop);
  auto* const column = new QVBoxLayout;
  row->addLayout(column, 1);
  facts_ = new QLabel(this);
  facts_->setObjectName("deviceFacts");
  warning_ = new QLabel(this);
  warning_->setObjectName("socketWarning");
  for (QLabel* const label : {facts_, warning_}) {
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(label);
  }
  column->addStretch(1);
  levelsTimer_.setInterval(kLookMs);
  connect(&levelsTimer_, &QTimer::timeout, this, [this] { showLevels(); });
  chipTimer_.setInterval(kChipMs);
  connect(&chipTimer_, &QTimer::timeout, this, [this] { showFacts(); });
  binder.mirror().bind(controls.Device, *this, [this] { showDevice(); });
  binder.mirror().bind(controls.AlgorithmSelection[1], *this, [this] { showFacts(); });
}

void DeviceCard::lookAt(std::function<SocketLook()> socket,
                        std::function<std::string(const std::string&)> chipOfDevice) {
  look_ = std::move(socket);
  chipOfDevice_ = std::move(chipOfDevice);
  chipTimer_.start();
  showFacts();
}

void DeviceCard::setRunning(bool running) {
  if (running) {
    levelsTimer_.start();
  } else {
    levelsTimer_.stop();
    socket_->setLevels({});
    showDevice();
  }
}

void DeviceCard::showDevice() {
  socket_->setChip(devices::chipPinsOf(device_.FamilyCode),
                   QString::fromStdString(std::string(trimmed(device_.DeviceName))));
  showFacts();
}

void DeviceCard::showFacts() {
  const QString facts = factsText();
  if (facts != facts_->text()) facts_->setText(facts);
  QString warning;
  if (look_ && !device_.DeviceName.empty() && !levelsTimer_.isActive()) {
    const std::string inSocket = look_().chip;
    const std::string wanted = chipOfDevice_(std::string(trimmed(device_.DeviceName)));
    if (inSocket.empty()) {
      warning = "The socket is empty.";
    } else if (!wanted.empty() && inSocket != wanted) {
      warning = "In the socket is another chip: " + QString::fromStdString(inSocket) + ".";
    }
  }
  if (warning == warning_->text()) return;
  warning_->setText(warning);
  QPalette own = warning_->palette();
  own.setColor(QPalette::WindowText, inkColour(Colour::Red, palette()));
  warning_->setPalette(own);
}

QString DeviceCard::factsText() const {
  if (device_.DeviceName.empty()) return "Choose the device: its chip appears here in its place.";
  const devices::Family& family = devices::familyOf(device_.FamilyCode);
  const devices::ChipPins pinout = devices::chipPinsOf(device_.FamilyCode);
  QStringList lines;
  const int bytes = device_.DeviceSizeBytes;
  lines << QString("%1 KB, %2 pins").arg(bytes / kBytesPerKB).arg(pinout.count());
  if (pinout.count() > 0) lines << QString("Pin 1 in socket pin %1").arg(pinout.socketPin(1));
  if (pinout.vppPin > 0) {
    lines << QString("VPP on pin %1 (socket %2)")
                 .arg(pinout.vppPin)
                 .arg(pinout.socketPin(pinout.vppPin));
  } else {
    lines << "5 V only";
  }
  const std::string voltage = devices::usualVoltage(device_.DeviceName);
  if (!voltage.empty()) lines << "Usual VPP: " + QString::fromStdString(voltage);
  if (chosen_.algorithms == Algorithms::DataSheet) return lines.join('\n');
  for (const std::string_view remark :
       {devices::whyNoBlankCheck(family), devices::whyNoErase(family)}) {
    if (!remark.empty()) lines << QString::fromUtf8(remark.data(), static_cast<int>(remark.size()));
  }
  return lines.join('\n');
}

std::optional<SocketLevels> DeviceCard::levels() const {
  if (look_) return look_().levels;
  const auto vpp = hardware::vppOutput(latches_.RegShadow0, port_.KestrelModel);
  if (!vpp) return std::nullopt;
  return SocketLevels{.high = 0, .vpp = maskOf(*vpp)};
}

void DeviceCard::showLevels() { socket_->setLevels(levels()); }

}  // namespace kestrel::window
