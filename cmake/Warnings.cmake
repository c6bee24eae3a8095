# Warnings and code generation shared by every target of the project.
add_library(vkpch_options INTERFACE)
target_compile_options(vkpch_options INTERFACE -Wall -Wextra -Wshadow -Wno-unused-parameter)

# Library code: SSSE3 baseline, no exceptions, no RTTI, no thread-safe static
# guards (they would need the C++ runtime), hidden symbols.
add_library(vkpch_library_options INTERFACE)
target_link_libraries(vkpch_library_options INTERFACE vkpch_options)
target_compile_options(vkpch_library_options INTERFACE
  -mssse3 -fno-exceptions -fno-rtti -fno-threadsafe-statics
  -fvisibility=hidden -fvisibility-inlines-hidden)
