#include "cli/json_report.h"

#include "app/launch/version.h"
#include "app/state/text_format.h"
#include "cli/json_lines.h"

namespace kestrel::cli {
namespace {

constexpr std::string_view kMark = ">  ";  // between time and text of a log entry
constexpr std::size_t kTimeLength = 8;

Json addressesOf(const BufferState& buffers) {
  return {{"first", 0}, {"last", buffers.CodeLength > 0 ? buffers.CodeLength - 1 : 0}};
}

}  // namespace

const char* nameOf(Ending ending) {
  switch (ending) {
    case Ending::Done:
      return "done";
    case Ending::Differs:
      return "differs";
    case Ending::Failed:
      return "failed";
    case Ending::Refused:
      return "refused";
    case Ending::Cancelled:
      return "cancelled";
    case Ending::NoRoutine:
      return "no-routine";
    case Ending::RunTimeError:
      return "run-time-error";
    case Ending::Stopped:
      return "stopped";
  }
  return "";
}

void JsonReport::start(const std::vector<std::string>& commands, const std::string& device,
                       bool isSimulated) {
  Json line = jsonEvent("start");
  line["version"] = launch::kVersion;
  line["commands"] = commands;
  line["device"] = device;
  line["simulated"] = isSimulated;
  printJson(out_, line);
}

void JsonReport::log(std::string_view entry) {
  Json line = jsonEvent("log");
  const bool hasTime = entry.size() > kTimeLength && entry.substr(kTimeLength).starts_with(kMark);
  if (hasTime) {
    line["time"] = entry.substr(0, kTimeLength);
    entry.remove_prefix(kTimeLength + kMark.size());
  }
  line["text"] = entry;
  printJson(out_, line);
}

void JsonReport::beginCommand() {
  isRunning_ = true;
  percent_ = -1;
}

// Between two commands the bar only goes to rest.
void JsonReport::progress(std::int32_t value, std::int32_t maximum) {
  if (!isRunning_) return;
  if (value <= 0 || maximum <= 0 || value > maximum) {
    percent_ = -1;
    return;
  }
  const auto percent = static_cast<std::int32_t>(std::int64_t{100} * value / maximum);
  if (percent == percent_) return;
  percent_ = percent;
  Json line = jsonEvent("progress");
  line["percent"] = percent;
  printJson(out_, line);
}

void JsonReport::difference(const images::Comparison& comparison) {
  Json line = jsonEvent("differences");
  line.update(jsonOf(comparison));
  printJson(out_, line);
}

void JsonReport::chip(const form::SeriesChip& chip, const std::string& device) {
  Json line = jsonEvent("chip");
  line["chip"] = chip.number;
  line["device"] = device;
  line["serial"] = chip.serial;
  line["ending"] = nameOf(chip.result.ending);
  line["reason"] = chip.result.reason;
  line["sum"] = chip.sum;
  line["seconds"] = chip.seconds;
  printJson(out_, line);
}

void JsonReport::result(const std::string& command, const CommandResult& result, int status,
                        const ProgrammerState& state, double seconds) {
  isRunning_ = false;
  Json line = jsonEvent("result");
  line["command"] = command;
  line["ending"] = nameOf(result.ending);
  line["status"] = status;
  line["reason"] = result.reason;
  line["remark"] = result.remark;
  line["device"] = trimmed(state.DeviceName);
  line["model"] = state.KestrelModel;
  line["port"] = static_cast<std::uint16_t>(state.PortBase);
  line["addresses"] = addressesOf(state);
  line["fileSum"] = state.FileChecksumText;
  line["deviceSum"] = state.DeviceChecksumText;
  line["seconds"] = seconds;
  printJson(out_, line);
}

}  // namespace kestrel::cli
