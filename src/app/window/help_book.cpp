#include "app/window/help_book.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextDocument>

namespace kestrel::window {
namespace {

QString readAll(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QString::fromUtf8(file.readAll());
}

bool hasAll(const QString& text, const QStringList& words) {
  for (const QString& word : words) {
    if (!text.contains(word, Qt::CaseInsensitive)) return false;
  }
  return true;
}

}  // namespace

HelpBook::HelpBook(const std::filesystem::path& helpFile) {
  const QString path = QString::fromStdString(helpFile.string());
  folder_ = QFileInfo(path).absolutePath();
  for (const QString& line : readAll(path).split('\n', Qt::SkipEmptyParts)) {
    if (line.startsWith('#')) continue;
    const QStringList parts = line.trimmed().split('\t');
    if (parts.size() < 2) continue;
    pages_.append({parts[0], parts[1], parts.value(2).split(',', Qt::SkipEmptyParts)});
  }
}

QString HelpBook::path(const HelpEntry& entry) const { return QDir(folder_).filePath(entry.file); }

QString HelpBook::words(const HelpEntry& entry) const {
  QTextDocument page;
  page.setHtml(readAll(path(entry)));
  return page.toPlainText();
}

QList<HelpEntry> HelpBook::search(const QString& text) const {
  const QStringList wanted = text.simplified().split(' ', Qt::SkipEmptyParts);
  QList<HelpEntry> byKeyword;
  QList<HelpEntry> byText;
  for (const HelpEntry& entry : pages_) {
    if (hasAll(entry.title + ' ' + entry.keywords.join(' '), wanted)) {
      byKeyword.append(entry);
    } else if (hasAll(words(entry), wanted)) {
      byText.append(entry);
    }
  }
  return byKeyword + byText;
}

}  // namespace kestrel::window
