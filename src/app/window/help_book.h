#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <filesystem>

namespace kestrel::window {

struct HelpEntry {
  QString file;  ///< beside the help file
  QString title;
  QStringList keywords;
};

/// The manual as its help file lists it: one page a line, "page TAB title TAB keywords", the first
/// line is the contents page; empty lines and those that begin with # do not count.
class HelpBook {
 public:
  /// A file that cannot be read is an empty book.
  explicit HelpBook(const std::filesystem::path& helpFile);

  [[nodiscard]] const QList<HelpEntry>& pages() const { return pages_; }

  /// The pages that have every word of the text, in a title, a keyword or the page itself; those
  /// with a match in title or keywords first. All pages for an empty text.
  [[nodiscard]] QList<HelpEntry> search(const QString& text) const;

  /// The plain words of a page.
  [[nodiscard]] QString words(const HelpEntry& entry) const;

  [[nodiscard]] QString path(const HelpEntry& entry) const;

  /// The folder of the pages and their pictures.
  [[nodiscard]] const QString& folder() const { return folder_; }

 private:
  QString folder_;
  QList<HelpEntry> pages_;
};

}  // namespace kestrel::window
