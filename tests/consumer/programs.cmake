# The programs of both CMake consumers: one that calls every folder, one with the C++ headers, and one with derived
# classes under each set of flags.
function(consumer_program name source)
  add_executable(${name} ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${source})
  target_link_libraries(${name} PRIVATE tarnutil::tarnutil)
  target_compile_options(${name} PRIVATE ${ARGN})
  target_link_options(${name} PRIVATE ${ARGN})
  add_test(NAME ${name} COMMAND ${name})
endfunction()

enable_testing()
consumer_program(calls main.cpp)
consumer_program(face face.cpp)
consumer_program(derived derived.cpp)
consumer_program(derived_plain derived.cpp -fno-rtti -fno-exceptions)
consumer_program(derived_checked derived.cpp -fsanitize=undefined -fno-sanitize-recover=all)
