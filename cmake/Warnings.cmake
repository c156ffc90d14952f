# Warnings are errors, for every target of the project (third-party headers come in as system headers).
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
                    -Wold-style-cast -Woverloaded-virtual -Wnull-dereference -Werror)
