#pragma once

#include <functional>
#include <string>

#include "app/form/frm_main.h"
#include "app/work/device_catalogue.h"
#include "app/work/project.h"
#include "app/work/work.h"

namespace kestrel::work {

/// Runs what a person does at the form; throws when that does not end well.
using Use = std::function<void(const std::function<void()>& event)>;

/// Sets a piece of work at the form, each option by the control that a person would press. The code
/// file, backups and series are the front ends' own. Throws UsageError for what is not offered,
/// FileError for a setup, and what `use` throws.
void applyWork(form::frmMain& form, const Work& work, const DeviceCatalogue::Device* device,
               const Use& use);

/// Why an option cannot be had: no device is selected, or else the given reason.
[[nodiscard]] std::string unless(const SelectionState& device, const std::string& what,
                                 const std::string& reason);

/// Throws UsageError for an option that the device does not have with these algorithms.
void checkOffered(const Work& work, const SelectionState& device, Algorithms algorithms);

/// What is set at the form, as a project has it; the code file is the front end's.
[[nodiscard]] ProjectItems itemsAtForm(form::frmMain& form);

/// Opens a code file; with `padFF` what it does not fill is FFh: the buffer is erased behind the
/// name of the file, which is then read into it once more.
void openPadded(bool padFF, const std::function<void()>& open, const std::function<void()>& erase);

}  // namespace kestrel::work
