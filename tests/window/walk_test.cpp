#include <QAbstractButton>
#include <QDir>
#include <QEventLoop>
#include <QListWidget>
#include <QMenuBar>
#include <QTextBlock>
#include <QThread>
#include <QToolTip>
#include <fstream>
#include <memory>

#include "app/window/arguments.h"
#include "app/window/board_panel.h"
#include "app/window/device_card.h"
#include "app/window/link_dialog.h"
#include "window/window_look.h"
#include "window/window_rig.h"

namespace kestrel::test {
namespace {

constexpr int kLookMs = 2;
constexpr int kFewestLooks = 4;  // what a step leaves to the event loop is done by then
constexpr int kRestMs = 3'000;   // what has not changed for so long is not about to,
constexpr int kRestLooks = 50;   // nor when the processor was away: then by so many looks
constexpr int kSettledMs = 60;

/// Bytes as a walk writes them: "TEXT", 100 x FF or 100 counting; then changes such as , 1F = 00AA.
std::vector<std::uint8_t> bytesOf(const QString& text) {
  std::vector<std::uint8_t> bytes;
  for (const QString& item : text.split(", ")) {
    const QStringList words = item.split(' ');
    if (item.startsWith('"')) {
      const QByteArray written = item.mid(1, item.size() - 2).replace("\\n", "\n").toUtf8();
      bytes.assign(written.begin(), written.end());
    } else if (words.value(1) == "=") {
      const QByteArray change = QByteArray::fromHex(words[2].toUtf8());
      std::ranges::copy(change, bytes.begin() + words[0].toInt(nullptr, 16));
    } else if (words.value(1) == "x") {
      bytes.assign(words[0].toUInt(), static_cast<std::uint8_t>(words[2].toUInt(nullptr, 16)));
    } else {
      bytes = countingBytes(words[0].toUInt());
    }
  }
  return bytes;
}

/// As it is seen, without the mark of its key.
QString captionOf(QString text) { return text.replace("&&", "\n").remove('&').replace('\n', '&'); }

/// One walk through the window. A line is a step that a person takes; the indented lines under it
/// are what changed by that and nothing else, or with "..." at the end some of it. A step that
/// begins with "meanwhile" is taken while the command of the step before it runs.
class Walk {
 public:
  explicit Walk(const std::filesystem::path& file) : file_(file.string()) {
    std::ifstream lines(file);
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
      ++number;
      if (line.empty() || line.starts_with('#')) continue;
      const QString text = QString::fromStdString(line);
      if (line.starts_with(' ')) {
        steps_.back().expected << text.trimmed();
      } else {
        steps_.push_back({.text = text, .expected = {}, .line = number});
      }
    }
  }

  void run() {
    const QString before = QDir::currentPath();
    lookSoon();
    loop_.exec();
    rig_.reset();
    QDir::setCurrent(before);
  }

 private:
  struct Step {
    QString text;
    QStringList expected;
    int line;
  };

  void lookSoon() {
    QTimer::singleShot(kLookMs, &loop_, [this] { look(); });
  }

  /// The step is not over: it is inside a command, and that waits for nobody.
  [[nodiscard]] bool isUnderWay() const {
    const int level = QThread::currentThread()->loopLevel();
    const bool isRunning = rig_ && rig_->form.runner().isRunning();
    return levels_.empty() ? isRunning && level == 1 : level <= levels_.back();
  }
  [[nodiscard]] bool isNextMeanwhile() const {
    return next_ < steps_.size() && steps_[next_].text.startsWith("meanwhile ");
  }

  void look() {
    lookSoon();
    if (isUnderWay()) {
      if (isNextMeanwhile() && rig_ && rig_->form.runner().isRunning())
        take(steps_[next_++].text.mid(10));
      return;
    }
    if (isTaken_ && !isAsExpected(steps_[next_ - 1])) return;
    isTaken_ = false;
    if (next_ < steps_.size()) return take(steps_[next_++].text);
    if (QWidget* const left = QApplication::activeModalWidget()) {
      left->close();
    } else {
      loop_.quit();
    }
  }

  /// False as long as more may come.
  bool isAsExpected(const Step& step) {
    if (!rig_) {
      ADD_FAILURE_AT(file_.c_str(), step.line) << said_.join(' ').toStdString();
      return true;
    }
    Look now = lookAt(*rig_);
    ++looks_;
    const bool isBehind = rig_->form.runner().isRunning();  // a question
    if (isBehind) now.insert({kMainWindow, before_[kMainWindow]});
    if (now != last_ || looks_ < kFewestLooks) {
      last_ = now;
      unchanged_.start();
      changedAt_ = looks_;
      return false;
    }
    QStringList found = said_ + changesFrom(before_, now);
    for (QString& line : found) line = line.trimmed();
    const bool isSome = step.expected.endsWith("...");
    if (isSome) {
      const auto isOther = [&](const QString& line) { return !step.expected.contains(line); };
      found.erase(std::remove_if(found.begin(), found.end(), isOther), found.end());
      found << "...";
    }
    const bool isRight = found == step.expected;
    if (!unchanged_.hasExpired(isRight && !isSome ? 0 : isRight ? kSettledMs : kRestMs))
      return false;
    if (!isRight && looks_ - changedAt_ < kRestLooks) return false;
    if (!isRight) {
      const QString told = step.text + "\nexpected\n  " + step.expected.join("\n  ") +
                           "\nfound\n  " + found.join("\n  ");
      ADD_FAILURE_AT(file_.c_str(), step.line) << told.toStdString();
    }
    if (isOurs(top())) {
      EXPECT_EQ(misplacedIn(top()), "") << step.text.toStdString();
    }
    before_ = now;
    said_.clear();
    return true;
  }

  void take(const QString& step) {
    isTaken_ = true;
    looks_ = 0;
    unchanged_.start();
    if (rig_) rig_->restartWatch();
    levels_.push_back(QThread::currentThread()->loopLevel());
    try {
      act(step.section(' ', 0, 0), step.section(' ', 1));
    } catch (const std::exception& error) {
      said_ << QString("cannot: ") + error.what();
    }
    levels_.pop_back();
    if (rig_ && QApplication::activeModalWidget() == nullptr) rig_->window.activateWindow();
  }

  void act(const QString& verb, const QString& rest) {
    const QString link = verb == "type" ? " into " : " in ";
    const QString what = rest.section(link, -1);
    const QString words = rest.section(link, 0, 0);
    if (verb == "start") return start(rest);
    if (!rig_) throw std::invalid_argument("nothing is started");
    if (verb == "press") return press(rest);
    if (verb == "menu") return choose(rest);
    if (verb == "type") return type(words, rest.contains(link) ? part(what) : target());
    if (verb == "keys") return pressKeys(rest);
    if (verb == "choose") return choose(words, part(what));
    if (verb == "file") return chooseFile(rest);
    if (verb == "put") return put(rest.section(": ", 0, 0), rest.section(": ", 1));
    if (verb == "remove")
      return void(std::filesystem::remove_all(rig_->folder / rest.toStdString()));
    if (verb == "chip") return rig_->board().loadChip(bytesOf(rest));
    if (verb == "close") return close();
    if (verb == "point") return point(part(rest));
    if (verb == "follow") return follow(words, part(what));
    if (verb == "double-click") return doubleClick(part(rest));
    if (verb == "click") return click(part(rest.section(" at ", 0, 0)), rest.section(" at ", 1));
    if (verb == "slide")
      return slide(rest.section(" to ", 1).toInt(), part(rest.section(" to ", 0, 0)));
    if (verb == "go") return part(rest.mid(3)).setFocus();
    if (verb == "where") return where();
    throw std::invalid_argument("no such step");
  }

  void start(const QString& options) {
    const QStringList words =
        QStringList{"kestrel", "--simulate"} + options.split(' ', Qt::SkipEmptyParts);
    rig_.reset();
    before_.clear();
    rig_ = std::make_unique<WindowRig>(window::readArguments(words).launch);
    QDir::setCurrent(QString::fromStdString(rig_->folder.path()));
    launch::SimulatedBoard& simulated = *rig_->program.simulated();
    window::MainWindow& window = rig_->window;
    window.addLinkEntry(
        [this] { return window::askForLink(rig_->program, rig_->settings, rig_->window); });
    window.addSidePanel(
        *new window::SimulatedBoardPanel(simulated, rig_->form.runner(), rig_->input, &window),
        "Simulated board");
    window.changeChipsBy(
        {.changeChip = [&](std::size_t n) { simulated.changeChip(n); }, .keepChip = [] {}});
    window::watchSocket(simulated, window.deviceCard());
    window.offerSimulation([this] { said_ << "goes over to a simulated board"; });
    if (rig_->program.waves() != nullptr) window.offerWaves(*rig_->program.waves());
    window.start();
    simulated.startUpDone();
  }

  [[nodiscard]] static bool isOurs(const QWidget& dialog) {
    return !dialog.inherits("QMessageBox") && !dialog.inherits("QFileDialog");
  }
  /// What is worked at: the dialog that is open, or the window.
  [[nodiscard]] QWidget& top() const {
    QWidget* const dialog = QApplication::activeModalWidget();
    return dialog != nullptr ? *dialog : rig_->window;
  }
  /// What the keys go to.
  [[nodiscard]] QWidget& target() const {
    if (QWidget* const popup = QApplication::activePopupWidget()) return *popup;
    QWidget* const focus = top().focusWidget();
    return focus != nullptr ? *focus : top();
  }

  /// The part with this name, or the button with this caption.
  [[nodiscard]] QWidget& part(const QString& name) const {
    QWidget* found = nullptr;
    for (QWidget* const widget : top().findChildren<QWidget*>()) {
      if (!widget->isVisible()) continue;
      if (widget->objectName() == name) return *widget;
      const auto* const button = dynamic_cast<QAbstractButton*>(widget);
      if (found == nullptr && button != nullptr && captionOf(button->text()) == name)
        found = widget;
    }
    if (found == nullptr) throw std::invalid_argument("there is no " + name.toStdString());
    return *found;
  }

  void where() { said_ << "the keyboard is at " + target().objectName(); }

  void press(const QString& name) {
    QWidget& button = part(name);
    if (!button.isEnabled()) throw std::invalid_argument("it is off");
    const bool isGroup = button.inherits("QGroupBox");
    const bool isBox = button.inherits("QCheckBox") || button.inherits("QRadioButton");
    QPoint place = button.rect().center();
    if (isGroup || isBox) place = QPoint(8, isGroup ? 8 : button.height() / 2);
    QTest::mouseClick(&button, Qt::LeftButton, Qt::NoModifier, place);
  }

  [[nodiscard]] QString folder() const { return QString::fromStdString(rig_->folder.path()) + '/'; }

  /// An entry of the menus; the menu that it is in opens first.
  void choose(const QString& path) {
    const QStringList names = path.split(" > ");
    QList<QAction*> entries = rig_->window.menuBar()->actions();
    for (const QString& name : names) {
      const auto found = std::ranges::find_if(entries, [&](const QAction* entry) {
        return captionOf(entry->text()) == name || entry->toolTip() == folder() + name;
      });
      if (found == entries.end())
        throw std::invalid_argument("there is no entry " + name.toStdString());
      if (!(*found)->isEnabled()) throw std::invalid_argument("it is off");
      if ((*found)->menu() == nullptr) return (*found)->trigger();
      emit(*found)->menu()->aboutToShow();
      entries = (*found)->menu()->actions();
    }
  }

  static void type(const QString& text, QWidget& field) {
    field.setFocus();
    if (!field.inherits("QPlainTextEdit")) QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    text.isEmpty() ? QTest::keyClick(&field, Qt::Key_Delete) : QTest::keyClicks(&field, text);
  }

  /// Such as Ctrl+Z x 3.
  void pressKeys(const QString& keys) {
    const QKeyCombination key = QKeySequence(keys.section(" x ", 0, 0))[0];
    for (int i = 0; i < std::max(1, keys.section(" x ", 1).toInt()); ++i) {
      QTest::keyClick(&target(), key.key(), key.keyboardModifiers());
    }
  }

  static void choose(const QString& entry, QWidget& list) {
    if (auto* const lines = dynamic_cast<QListWidget*>(&list))
      return lines->setCurrentRow(entry.toInt() - 1);
    auto& box = dynamic_cast<QComboBox&>(list);
    const int place = box.findText(entry);
    if (place < 0) throw std::invalid_argument("there is no such choice");
    box.setCurrentIndex(place);
    emit box.activated(place);
  }

  void chooseFile(const QString& name) {
    auto& dialog = dynamic_cast<QFileDialog&>(top());
    dialog.setDirectory(QDir::current());
    dialog.findChild<QLineEdit*>("fileNameEdit")->setText(QDir::current().filePath(name));
    static_cast<QDialog&>(dialog).accept();
  }

  void put(const QString& name, const QString& contents) const {
    const std::filesystem::path file = rig_->folder / name.toStdString();
    name.endsWith('/') ? void(std::filesystem::create_directories(file))
                       : writeFileAtomically(file, bytesOf(contents));
  }

  void close() {
    if (auto* const dialog = dynamic_cast<QDialog*>(&top())) return dialog->reject();
    rig_->window.close();
  }

  void point(QWidget& widget) {
    QHelpEvent asks(QEvent::ToolTip, widget.rect().center(), QCursor::pos());
    QApplication::sendEvent(&widget, &asks);
    said_ << "says: " + QToolTip::text();
  }

  static void follow(const QString& link, QWidget& label) {
    auto& text = dynamic_cast<QLabel&>(label);
    const QStringList parts = text.text().split("<a href=\"");
    for (const QString& part : parts.mid(1)) {
      if (part.section('>', 1).startsWith(link + "<"))
        return emit text.linkActivated(part.section('"', 0, 0));
    }
    throw std::invalid_argument("there is no such link");
  }

  static void doubleClick(QWidget& widget) {
    auto* const area = dynamic_cast<QAbstractScrollArea*>(&widget);
    QTest::mouseDClick(area != nullptr ? area->viewport() : &widget, Qt::LeftButton);
  }

  /// So many hundredths down from its upper edge, or in a text at a line and column.
  static void click(QWidget& widget, const QString& where) {
    auto* const text = dynamic_cast<QPlainTextEdit*>(&widget);
    QPoint place(widget.width() / 2, widget.height() * where.toInt() / 100);
    if (text != nullptr) {
      QTextCursor cursor(text->document()->findBlockByNumber(where.section(':', 0, 0).toInt()));
      cursor.setPosition(cursor.position() + where.section(':', 1).toInt());
      place = text->cursorRect(cursor).center();
    }
    QTest::mouseClick(text != nullptr ? text->viewport() : &widget, Qt::LeftButton, {}, place);
  }

  static void slide(int value, QWidget& widget) {
    auto& slider = dynamic_cast<QAbstractSlider&>(widget);
    slider.setSliderDown(true);
    slider.setSliderPosition(value);
    slider.setSliderDown(false);
  }

  std::string file_;
  std::vector<Step> steps_;
  std::size_t next_ = 0;     ///< step to take
  std::vector<int> levels_;  ///< of the event loops in which steps are under way
  std::unique_ptr<WindowRig> rig_;
  Look before_;
  Look last_;
  bool isTaken_ = false;  ///< a step whose changes have not been looked at
  int looks_ = 0;         ///< since the step was taken
  int changedAt_ = 0;     ///< of them
  QElapsedTimer unchanged_;
  QStringList said_;  ///< by the step itself
  QEventLoop loop_;
};

class Walks : public testing::TestWithParam<std::string> {};

TEST_P(Walks, showAfterEachStepWhatChanged) {
  Walk(std::filesystem::path(KESTREL_WALKS) / (GetParam() + ".txt")).run();
}

INSTANTIATE_TEST_SUITE_P(Window, Walks,
                         testing::Values("start", "device", "read", "program", "buffer", "files",
                                         "project", "several", "setups", "board", "waves",
                                         "running", "help"),
                         [](const auto& walk) { return walk.param; });

}  // namespace
}  // namespace kestrel::test
