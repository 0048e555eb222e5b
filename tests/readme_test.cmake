# Checks that the README shows the quick start as it stands, and what it really prints.
# Variables: README, SOURCE, PROGRAM, EVOPATH, CATALOGUE.
file(READ ${README} readme)

function(expect_in_readme what text)
  string(FIND "${readme}" "${text}" position)
  if(position EQUAL -1)
    message(FATAL_ERROR "README.md does not show ${what}:\n${text}")
  endif()
endfunction()

file(READ ${SOURCE} source)
expect_in_readme("the source of the quick start" "```cpp\n${source}```")

execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
expect_in_readme("the output of the quick start" "```\n${output}```")

execute_process(COMMAND ${EVOPATH} path ${CATALOGUE} --question
                OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
expect_in_readme("the answer to the catalogue's question" "```\n${output}```")
