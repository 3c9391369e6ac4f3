// The form from press to press: what it says, what a person sees change and what the board gets.
// form_walk.txt holds steps, each behind ">", and under each what came of it:
//   a line of the log; "sound", "box" and "asked" for what else reaches the person; "ending" unless
//   the command is done; a control that changed (for the first board: that is not plain), with all
//   that differs from a plain enabled one; the accesses and waits at the port, and the changes of
//   controls on the way, with their hashes.
// A change that is meant is entered there by hand, from what a failure prints.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <sstream>

#include "app/state/text_format.h"
#include "devices/device_table.h"
#include "support/form_rig.h"

namespace kestrel::test {
namespace {

/// FNV-1a of 32 bits, and how much went into it.
struct Digest {
  void add(std::uint64_t value) { hash = (hash ^ static_cast<std::uint32_t>(value)) * 16777619U; }
  void note(std::initializer_list<std::uint64_t> values) {
    for (const std::uint64_t value : values) add(value);
    ++count;
  }
  [[nodiscard]] std::string text() const {
    return std::to_string(count) + " " + hexText(static_cast<std::int32_t>(hash), 8);
  }

  std::uint32_t hash = 2166136261U;
  std::size_t count = 0;
};

struct NotedPort final : PortAccess, Waits {
  explicit NotedPort(sim::SimulatedPort& given) : port(given) {}
  void PortOut(std::int16_t number, std::uint8_t value) override {
    noted.note({1, static_cast<std::uint16_t>(number), value});
    port.PortOut(number, value);
  }
  std::uint8_t PortIn(std::int16_t number) override {
    const std::uint8_t value = port.PortIn(number);
    noted.note({2, static_cast<std::uint16_t>(number), value});
    return value;
  }
  void Sleep(std::int32_t milliseconds) override {
    noted.note({3, static_cast<std::uint32_t>(milliseconds)});
    port.Sleep(milliseconds);
  }
  void Spin(std::int64_t counts) override {
    noted.note({4, static_cast<std::uint64_t>(counts)});
    port.Spin(counts);
  }

  sim::SimulatedPort& port;
  Digest noted;
};

std::string valueOf(const Control& control) {
  const auto number = [](auto value) { return " " + std::to_string(value); };
  if (const auto* const option = dynamic_cast<const OptionButton*>(&control))
    return option->value() ? " set" : "";
  if (const auto* const box = dynamic_cast<const CheckBox*>(&control))
    return box->value() != 0 ? number(box->value()) : "";
  if (const auto* const range = dynamic_cast<const RangeControl*>(&control))
    return number(range->value()) + " of" + number(range->minimum()) + " to" +
           number(range->maximum());
  if (const auto* const bar = dynamic_cast<const ProgressBar*>(&control))
    return number(bar->value()) + " of" + number(bar->maximum());
  if (const auto* const list = dynamic_cast<const DropDownList*>(&control))
    return number(list->position()) + " \"" + list->text() + "\"";
  const auto* const box = dynamic_cast<const TextBox*>(&control);
  if (box == nullptr || box->text().empty()) return "";
  if (box->text().find('\n') == std::string::npos) return " \"" + box->text() + "\"";
  Digest lines;
  for (const char c : box->text()) lines.note({static_cast<unsigned char>(c)});
  return " of " + lines.text();
}

std::string textOf(const Control& control) {
  std::string text = control.name() + ":";
  if (!control.enabled()) text += " off";
  if (!control.visible()) text += " hidden";
  if (!control.caption().empty()) text += " '" + control.caption() + "'";
  if (control.colour() != Colour::ButtonFace)
    text += " colour " + hexText(static_cast<std::int32_t>(control.colour()));
  return text + valueOf(control);
}

/// One person at one board.
class Walk final : ControlListener {
 public:
  Walk(sim::Model model, const std::string& chip, const std::string& contents, bool isFirst)
      : board_(bench_.plug(model, 0x378)) {
    for (const Control* const control : rig_.controls.all()) {
      seen_[control] = isFirst ? control->name() + ":" : shown(*control);
    }
    rig_.controls.setListener(this);
    rig_.form.Form_Load();
    if (chip.empty()) return;
    board_.insert(sim::makeChip(chip));
    board_.blankChip();
    if (!contents.empty()) board_.loadChip(bytes(contents, board_.chip()->contents().size()));
  }

  void take(const std::string& verb, std::istream& words) {
    std::string name;
    std::string rest;
    words >> std::ws;
    if (verb == "device") return std::getline(words, name), rig_.select(name);
    words >> name >> std::ws;
    std::getline(words, rest);
    if (verb == "open") return rig_.openImage(bytes(name, 8192));
    if (verb == "weak")
      return board_.fitWeakCell(static_cast<std::uint32_t>(std::stoul(name, nullptr, 16)));
    if (verb == "pull") return (void)board_.takeOut();
    if (verb == "offer") return offer(name);
    if (verb == "set") {
      auto& range = dynamic_cast<RangeControl&>(*rig_.controls.find(name));
      rig_.result = rig_.form.runner().run([&] { range.setValue(std::stoi(rest)); });
    } else if (verb == "press") {
      press(*rig_.controls.find(name), rest);
    } else {
      throw std::invalid_argument(verb);
    }
  }

  /// What came of it since the last time.
  [[nodiscard]] std::string found() {
    std::string text;
    const auto line = [&](const std::string& mark, const std::string& what) {
      text += mark + masked(what) + "\n";
    };
    for (const std::string& message : rig_.log()) line("", message);
    for (const std::string& sound : rig_.sounds.played) line("sound ", sound);
    for (const MessageBox& box : rig_.dialogs.boxes) {
      line("box ", box.title + ": " + box.text);
      for (const Fact& fact : box.facts) line(fact.isWarning ? "warning " : "fact ", fact.text);
    }
    for (const std::string& asked : rig_.dialogs.asked) line("asked ", asked);
    if (rig_.result.ending != Ending::Done)
      line("ending ",
           std::to_string(static_cast<int>(rig_.result.ending)) + " " + rig_.result.reason);
    for (const Control* const control : rig_.controls.all()) {
      std::string now = control == &rig_.controls.SystemLog ? "" : shown(*control);
      if (std::exchange(seen_[control], now) != now && !now.empty()) line("", now);
    }
    if (port_.noted.count > 0) line("port ", port_.noted.text());
    if (changes_.count > 0) line("changes ", changes_.text());
    rig_.clearLog();
    rig_.sounds.played.clear();
    rig_.dialogs.boxes.clear();
    rig_.dialogs.asked.clear();
    rig_.result = {};
    port_.noted = changes_ = {};
    return text;
  }

 private:
  /// Puts the rows of a family, such as "FL", on the list that calls them not available.
  void offer(const std::string& family) {
    for (auto& row : rig_.state.DeviceTable) {
      const std::string code = row[devices::kLetterColumn] + row[devices::kSubCodeColumn];
      if (code == family) row[devices::kListedColumn] = "Y";
    }
    devices::FillDeviceList(rig_.state, rig_.state.algorithms, rig_.controls.Device);
  }

  /// On one line and with DIR for the folder, which has another name in each run.
  [[nodiscard]] std::string masked(std::string text) const {
    for (const std::string& folder : {folder_, upperCase(folder_)}) {
      for (std::size_t at = 0; (at = text.find(folder)) != std::string::npos;)
        text.replace(at, folder.size(), "DIR");
    }
    std::ranges::replace(text, '\n', '/');
    return text;
  }
  [[nodiscard]] std::string shown(const Control& control) const { return masked(textOf(control)); }

  void press(Control& control, const std::string& said) {
    if (said == "ok") {
      rig_.dialogs.answers.push_back(Answer::Ok);
    } else if (!said.empty()) {
      rig_.dialogs.files.push_back((rig_.folder / said).string());
      rig_.dialogs.texts.push_back(said);
    }
    auto& runner = rig_.form.runner();
    if (auto* const button = dynamic_cast<Button*>(&control)) {
      rig_.result = runner.press(*button);
    } else {
      auto* const box = dynamic_cast<CheckBox*>(&control);
      rig_.result = runner.run(
          [&] { (void)(box ? box->press() : dynamic_cast<OptionButton&>(control).press()); });
    }
    rig_.dialogs.answers.clear();
    rig_.dialogs.files.clear();
    rig_.dialogs.texts.clear();
  }

  /// "full" counts, "sparse" is erased but for a word and a byte, "short" is the begin of "full".
  static std::vector<std::uint8_t> bytes(const std::string& name, std::size_t size) {
    std::vector<std::uint8_t> all(name == "short" ? 40 : size, 0xFF);
    for (std::size_t i = 0; i < all.size() && name != "sparse"; ++i)
      all[i] = static_cast<std::uint8_t>(i * 5 + i / 256);
    if (name != "sparse") return all;
    std::ranges::copy(std::string("wood"), all.begin() + 3);
    all[2000 % size] = 0x0F;
    return all;
  }

  void controlChanged(const Control& control) override {
    for (const char c : shown(control)) changes_.add(static_cast<unsigned char>(c));
    ++changes_.count;
  }
  void textAppended(const TextBox&, std::string_view) override {}

  sim::Bench bench_;
  sim::Board& board_;
  sim::SimulatedPort simulated_{bench_};
  NotedPort port_{simulated_};
  FormRig rig_{port_, port_};
  std::string folder_ = rig_.folder.path().string();
  std::map<const Control*, std::string> seen_;
  Digest changes_;
};

TEST(FormWalk, eachStepSaysShowsAndSendsTheBoardWhatIsWrittenDown) {
  std::ifstream file(KESTREL_FORM_WALK);
  std::unique_ptr<Walk> walk;
  std::string step;
  for (std::getline(file, step); file;) {
    std::string expected;
    std::string line;
    while (std::getline(file, line) && !line.starts_with('>')) expected += line + "\n";
    std::istringstream words(step.substr(2));
    std::string verb;
    words >> verb;
    if (verb == "board") {
      int model = 0;
      std::string chip;
      std::string contents;
      words >> model >> chip >> contents;
      walk = std::make_unique<Walk>(static_cast<sim::Model>(model), chip, contents, !walk);
    } else {
      walk->take(verb, words);
    }
    EXPECT_EQ(step + "\n" + walk->found(), step + "\n" + expected);
    step = line;
  }
}

}  // namespace
}  // namespace kestrel::test
