#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace kestrel {

/// A name as it may stand on a terminal, in the log or in a list: what would move the cursor, start
/// a terminal's escape sequence, break the line or turn the direction of writing is shown as \n,
/// \r, \t or \xNN, and so is each byte that is no UTF-8. Everything else stays as it is, the
/// backslash too: the text is to be looked at, not to be read back.
[[nodiscard]] std::string shownName(std::string_view text);

/// The full name of a file, free of "." and of the ".." that go back by a real folder. One that
/// goes back by a link stays, since the system follows the link first. Throws FileError when the
/// working folder is no longer there.
[[nodiscard]] std::filesystem::path fullName(const std::filesystem::path& name);

/// The name that a chain of links ends at, whether a file has it yet or not; the folders on the
/// way are left to the system. `error` is set, and the name empty, for a loop or a folder that
/// cannot be entered.
[[nodiscard]] std::filesystem::path followLinks(std::filesystem::path name, std::error_code& error);

/// The folder that the name is in; "." for a bare name.
[[nodiscard]] std::filesystem::path folderOf(const std::filesystem::path& name);

/// True for two names of one file, also by links; of files that are not there yet, when saving
/// would make one file of them.
[[nodiscard]] bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

}  // namespace kestrel
