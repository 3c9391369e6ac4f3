#include "cli/save_project.h"

#include <iostream>

#include "app/work/project.h"
#include "cli/exit_status.h"
#include "platform/file_names.h"

namespace kestrel::cli {

int saveProject(const Arguments& arguments) {
  if (arguments.words.size() != 1) throw launch::UsageError("save-project wants one FILE");
  const std::string& file = arguments.words.front();
  work::ProjectItems items;
  for (const auto& [option, text] : arguments.given) {
    const std::string key = work::projectKey(option);
    if (!key.empty()) items.emplace_back(key, text);
  }
  if (const auto algorithms = arguments.launch.algorithms) {
    items.emplace_back(work::kAlgorithmsKey, work::wordOf(*algorithms));
  }
  work::writeProject(file, items);
  if (!arguments.quiet) std::cout << "Project saved as " << shownName(file) << '\n';
  return kDone;
}

}  // namespace kestrel::cli
