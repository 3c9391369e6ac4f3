// Any text as a project, a plan of serial numbers, a counter's file and a report: refused by its
// own error, or taken and written again. A counter never goes back.

#include <cstdlib>
#include <fstream>

#include "app/form/series_report.h"
#include "app/launch/option_values.h"
#include "app/work/project.h"
#include "images/serial_numbers.h"
#include "platform/runtime_error.h"
#include "setups/project_file.h"
#include "support/temporary_folder.h"

namespace {

using namespace kestrel;

void check(bool holds) {
  if (!holds) std::abort();
}

template <typename Steps>
void refusedOr(Steps steps) {
  try {
    steps();
  } catch (const images::ImageError&) {
  } catch (const FileError&) {
  } catch (const launch::UsageError&) {
  }
}

void readProject(const std::string& text) {
  setups::ProjectFile project = setups::ProjectFile::parse(text, "project");
  const auto before = project.items();
  project.set("device", "27C256");
  const auto after = setups::ProjectFile::parse(project.text(), "project").items();
  check(after.size() >= before.size());
}

// What is taken is written as it was read.
void openProject(const std::filesystem::path& file) {
  work::Work taken;
  (void)work::readProject(file, taken, [](std::string_view) { return false; });
  work::writeProject(file, {{"speed", "7"}, {"vpp", std::nullopt}});
  work::Work again;
  (void)work::readProject(file, again, [](std::string_view) { return false; });
  check(again.speed == 7 && !again.voltage && again.lane == taken.lane);
}

void readPlan(const std::string& text) {
  const images::SerialPlan plan = images::parseSerialPlan(text);
  (void)images::serialBytes(plan, std::to_string(plan.start));
}

void count(const std::filesystem::path& file) {
  images::SerialCounter counter({.counter = file});
  const std::string first = counter.take();
  counter.confirm();
  check(counter.take() != first);
  counter.giveBack();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const test::TemporaryFolder folder;
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::ofstream(folder / "counter", std::ios::binary) << text;
  std::ofstream(folder / "report", std::ios::binary) << text;
  std::ofstream(folder / "project", std::ios::binary) << text;
  refusedOr([&] { readProject(text); });
  refusedOr([&] { openProject(folder / "project"); });
  refusedOr([&] { readPlan(text); });
  refusedOr([&] { count(folder / "counter"); });
  refusedOr([&] {
    form::SeriesReport report(folder / "report");
    const std::size_t number = report.nextNumber();
    report.add({.number = number}, "27C256", "now");
    check(form::SeriesReport(folder / "report").nextNumber() == number + 1);
  });
  return 0;
}
