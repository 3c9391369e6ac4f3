#include "operations/routines.h"

namespace kestrel::operations {

bool Routines::run(devices::ProgramRoutine routine) {
  using enum devices::ProgramRoutine;
  switch (routine) {
    case P2732:
      return eprom_.P2732(), true;
    case P2764_128:
      return eprom_.P2764_128(), true;
    case P27256_040:
      return eprom_.P27256_040(), true;
    case P27080:
      return eprom_.P27080(), true;
    case P27010_020:
      return eprom_.P27010_020(), true;
    case ProgramX28C256:
      return pages_.ProgramX28C256(), true;
    case ProgramAT29C256:
      return pages_.ProgramAT29C256(), true;
    case ProgramFlash:
      return flash_.ProgramFlash(), true;
    case Write24CXX:
      return serial_.Write24CXX(), true;
    case Write24C32:
      return serial_.Write24C32(), true;
    case None:
      break;
  }
  return false;
}

void Routines::run(devices::EraseRoutine routine) {
  using enum devices::EraseRoutine;
  switch (routine) {
    case EraseX28C256:
      return pages_.EraseX28C256();
    case FlashChipErase:
      return flash_.FlashChipErase();
    case FlashChipEraseAtmel:
      return flash_.FlashChipEraseAtmel();
    case Write24CXX:
      return serial_.Write24CXX();
    case Write24C32:
      return serial_.Write24C32();
  }
}

}  // namespace kestrel::operations
