#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <sstream>

#include "cli/device_catalogue.h"

namespace kestrel::test {
namespace {

/// What bash offers for the last of these words; a word that is not there yet is ''.
std::string completions(const std::string& words) {
  // "compopt" works at the prompt alone.
  const std::string script =
      "source " KESTREL_COMPLETION "; compopt() { :; }; COMP_WORDS=(" KESTREL_CLI " " + words +
      "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kestrel_cli; echo -n ${COMPREPLY[*]}";
  const std::string command = "bash --norc -c \"$(cat <<'END'\n" + script + "\nEND\n)\"";
  const std::unique_ptr<FILE, int (*)(FILE*)> bash(::popen(command.c_str(), "r"), ::pclose);
  std::string offered;
  for (int c = 0; (c = std::fgetc(bash.get())) != EOF;) offered += static_cast<char>(c);
  return offered;
}

TEST(Completion, offersWhatFitsBehindTheWordBefore) {
  EXPECT_EQ(completions("sa"), "save-setup safe");
  EXPECT_EQ(completions("read ''"), "") << "the command is there";
  EXPECT_EQ(completions("read --s"), "--simulate --setup --speed --show");
  EXPECT_EQ(completions("read --vpp 2"), "21 25");
  EXPECT_EQ(completions("read -d 27c259"), "27C259") << "in either case";
  EXPECT_EQ(completions("read --chip 24c08"), "24C08");
  EXPECT_EQ(completions("read --chip 24c256"), "") << "not offered";
}

TEST(Completion, ofADeviceMeansThatDevice) {
  const cli::DeviceCatalogue catalogue;
  std::stringstream names;
  catalogue.printNames(names);
  int count = 0;
  for (std::string name; std::getline(names, name); ++count) {
    EXPECT_EQ(catalogue.find(name).shortName, name);
    EXPECT_EQ(name.find(' '), std::string::npos) << "bash would offer two words";
  }
  EXPECT_GT(count, 0);
}

}  // namespace
}  // namespace kestrel::test
