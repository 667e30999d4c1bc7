# vemba_warnings: the warning set every first-party target compiles with.
add_library(vemba_warnings INTERFACE)
target_compile_options(vemba_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
  -Woverloaded-virtual -Wconversion -Wsign-conversion -Wnull-dereference -Wimplicit-fallthrough
  $<$<BOOL:${VEMBA_WERROR}>:-Werror>)
