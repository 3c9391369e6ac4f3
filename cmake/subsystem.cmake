# One target a folder: kestrel_subsystem(NAME SOURCES file... LINKS target...).
# LINKS is the whole list of folders that this one may include; includes are written from src/.
function(kestrel_subsystem name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS")
  add_library(kestrel_${name} STATIC ${arg_SOURCES})
  target_include_directories(kestrel_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  list(TRANSFORM arg_LINKS PREPEND kestrel_)
  target_link_libraries(kestrel_${name} PUBLIC ${arg_LINKS} PRIVATE kestrel_settings)
endfunction()
