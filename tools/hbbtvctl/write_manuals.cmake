# cmake -DHBBTVCTL=[EMULATOR;]PROGRAM -DMANUALS=DIR -DCOMPLETIONS=DIR -P write_manuals.cmake
#
# Writes the completion scripts and the manual pages: that of the program, and those that its SEE ALSO section lists.
function(write_output file)
    execute_process(COMMAND ${HBBTVCTL} ${ARGN} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
    file(WRITE ${file} "${text}")
    set(written "${text}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${MANUALS} ${COMPLETIONS})
write_output(${MANUALS}/hbbtvctl.1 man)
string(REGEX MATCHALL "hbbtvctl\\\\-[a-z]+\\\\fR\\(1\\)" references "${written}")
foreach(reference IN LISTS references)
    string(REGEX REPLACE "hbbtvctl\\\\-([a-z]+).*" "\\1" command "${reference}")
    write_output(${MANUALS}/hbbtvctl-${command}.1 man ${command})
endforeach()
write_output(${COMPLETIONS}/hbbtvctl completion bash)
write_output(${COMPLETIONS}/_hbbtvctl completion zsh)
write_output(${COMPLETIONS}/hbbtvctl.fish completion fish)
