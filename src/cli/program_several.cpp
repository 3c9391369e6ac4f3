#include "cli/program_several.h"

#include <iostream>

#include "app/form/backup.h"
#include "cli/exit_status.h"
#include "cli/session.h"
#include "platform/file_names.h"
#include "platform/runtime_error.h"

namespace kestrel::cli {
namespace {

/// The person at a terminal: a line for each chip.
class TerminalOperator final : public form::SeriesOperator {
 public:
  TerminalOperator(Session& session, form::SeriesReport* report)
      : session_(session), report_(report) {}

  [[nodiscard]] const form::SeriesCount& count() const { return count_; }

  bool isNextChipIn(std::size_t number) override {
    std::cerr << "Chip " << number << ": put it in, then Enter (q ends; " << count_.text()
              << "): " << std::flush;
    const std::optional<std::string> line = session_.lineFromPerson();
    if (!line || line->starts_with('q') || line->starts_with('Q')) return false;
    session_.changeSimulatedChip(number);
    return true;
  }

  [[nodiscard]] bool keepsContents() const override {
    return session_.arguments().backup.has_value();
  }
  CommandResult keep(const std::vector<std::uint8_t>& contents) override {
    return form::keepContents(session_.form(), *session_.arguments().backup, contents);
  }

  void chipDone(const form::SeriesChip& chip) override {
    count_.add(chip);
    session_.keepSimulatedChip();
    if (report_ != nullptr)
      report_->add(chip, session_.deviceName(), session_.form().dateAndTime());
    if (session_.json() != nullptr) {
      session_.json()->chip(chip, session_.deviceName());
    } else {
      session_.out() << form::textOf(chip) << std::endl;
    }
  }

 private:
  Session& session_;
  form::SeriesReport* report_;
  form::SeriesCount count_;
};

std::optional<images::SerialCounter> counterOf(const Session& s) {
  if (!s.arguments().serial) return std::nullopt;
  images::checkInside(*s.arguments().serial, static_cast<std::size_t>(s.state().DeviceSizeBytes));
  std::optional<images::SerialCounter> counter(std::in_place, *s.arguments().serial);
  if (!counter->doubtful().empty()) {
    std::cerr << "kestrel-cli: the serial number " << shownName(counter->doubtful())
              << " was with a chip when an earlier run ended; it is given to no other\n";
  }
  return counter;
}

void runSeries(Session& s) {
  if (!s.controls().Program_button.enabled()) {
    throw EarlyEnd(kBadUsage, s.unless("program", "there is nothing to program; add -i FILE"));
  }
  s.confirm("Program one Device after another?");
  s.answerYes();
  std::optional<images::SerialCounter> counter = counterOf(s);
  std::optional<form::SeriesReport> report;
  if (s.arguments().report) report.emplace(*s.arguments().report);
  TerminalOperator person(s, report ? &*report : nullptr);
  form::ChipSeries series(s.form(), person, counter ? &*counter : nullptr);
  CommandResult result;
  try {
    result = series.run(report ? report->nextNumber() : 1);
  } catch (const std::exception&) {
    s.out() << person.count().text() << std::endl;
    throw;
  }
  s.out() << person.count().text() << std::endl;
  s.endUnlessDone(result);
  if (person.count().bad != 0) throw EarlyEnd(kFailed, person.count().text());
}

}  // namespace

void programSeveral(Session& session) {
  try {
    runSeries(session);
  } catch (const images::ImageError& error) {
    throw EarlyEnd(kBadUsage, std::string("--serial: ") + error.what());
  } catch (const FileError& error) {
    throw EarlyEnd(kBadUsage, error.what());
  }
}

}  // namespace kestrel::cli
