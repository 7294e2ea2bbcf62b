# Compiles refusedClasses.cpp with each of its mistakes, and checks the compiler's message. Input: SOURCE, and COMPILE,
# the command without the source and without macros.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${COMPILE} "${SOURCE}" COMMAND_ERROR_IS_FATAL ANY)

function(expect_refusal macro expected)
  execute_process(COMMAND ${COMPILE} -D${macro} "${SOURCE}" RESULT_VARIABLE result ERROR_VARIABLE said)
  string(FIND "${said}" "${expected}" place)
  if(result EQUAL 0 OR place EQUAL -1)
    message(SEND_ERROR "${macro}: expected a refusal with \"${expected}\", got ${result}: ${said}")
  endif()
endfunction()

expect_refusal(VIRTUAL_FUNCTION "an implementation class has no virtual functions")
expect_refusal(WITHOUT_CLASS "an implementation class has its own classOf")
expect_refusal(SEQUENCE_OF_BOOL "a sequence of bool would have no references to its values")
