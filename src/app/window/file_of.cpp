#include "app/window/file_of.h"

#include <QByteArray>
#include <system_error>

namespace kestrel::window {
namespace {

namespace fs = std::filesystem;

QString asQtShows(const fs::path& path) { return QString::fromStdString(path.string()); }

fs::path entryShownAs(const fs::path& folder, const fs::path& name) {
  const QString shown = asQtShows(name);
  fs::path found;
  std::error_code failed;
  fs::directory_iterator entry(folder.empty() ? "." : folder, failed);
  for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
    const fs::path candidate = entry->path().filename();
    if (asQtShows(candidate) != shown) continue;
    if (!found.empty()) return name;
    found = candidate;
  }
  return found.empty() ? name : found;
}

}  // namespace

fs::path fileOf(const QString& shown) {
  const fs::path named = shown.toStdString();
  if (!shown.contains(QChar::ReplacementCharacter)) return named;
  fs::path file;
  for (const fs::path& part : named) {
    const bool isShown = asQtShows(part).contains(QChar::ReplacementCharacter);
    file /= isShown ? entryShownAs(file, part) : part;
  }
  return file;
}

fs::path fileOf(const QUrl& url) {
  const QByteArray encoded = url.path(QUrl::FullyEncoded).toLatin1();
  return QByteArray::fromPercentEncoding(encoded).toStdString();
}

}  // namespace kestrel::window
