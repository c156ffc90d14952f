# Warnings are errors, for every target of the project (third-party headers come in as system headers).
# The macOS syntax check compiles the macOS sources with the same flags.
set(VANTREL_WARNING_FLAGS -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
                          -Wold-style-cast -Woverloaded-virtual -Wnull-dereference -Werror)
add_compile_options(${VANTREL_WARNING_FLAGS})
